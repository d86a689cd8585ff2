#include "service/agent_command.h"

#include "app/model/wording.h"
#include "base/log.h"
#include "base/plain_text.h"

#include <QFileInfo>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

QString trimSpaces(QStringView line) {
    const auto isSpace = [](QChar c) { return c == u'\t' || c.category() == QChar::Separator_Space; };
    while (!line.isEmpty() && isSpace(line.front()))
        line = line.sliced(1);
    while (!line.isEmpty() && isSpace(line.back()))
        line.chop(1);
    return line.toString();
}

} // namespace

std::optional<QString> AgentCommand::bundledAgent() const {
    const QString path = bundlePath + u"/Contents/Resources/korvel-agent"_s;
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable() ? std::optional(path) : std::nullopt;
}

std::optional<AgentLocation> AgentCommand::agentForCLI() const {
    if (const auto bundled = bundledAgent())
        return AgentLocation{*bundled, {}};
    if (!agentBin || agentBin->isEmpty())
        return std::nullopt;
    if (agentBin->endsWith(u".mjs"))
        return AgentLocation{u"/usr/bin/env"_s, {u"node"_s, *agentBin}};
    return AgentLocation{*agentBin, {}};
}

void AgentCommand::runAgentJson(const QJsonObject &request, Done<QJsonObject> done, milliseconds timeout) {
    const auto agent = agentForCLI();
    if (!agent) {
        log(u"[login] 找不到后台程序,没法登录"_s);
        scheduler.runInBackground([] {}, alive.guard([done = std::move(done)]() mutable {
            done(Error{ErrorKind::InvalidRequest, {}});
        }));
        return;
    }
    scheduler.background(
        [&programs = programs, run = buildAgentJson(*agent, request, timeout)] { return programs.run(run); },
        alive.guard([done = std::move(done)](const ProgramResult &result) mutable {
            if (!result.launched)
                log(u"[login] 后台程序起不来:"_s + result.launchError);
            done(parseAgentJson(result.output));
        }));
}

ProgramRun buildAgentJson(const AgentLocation &agent, const QJsonObject &request, milliseconds timeout) {
    return {.executable = agent.executable,
            .arguments = agent.leadingArguments + QStringList{u"login"_s, u"--stdin-json"_s},
            .input = QJsonDocument(request).toJson(QJsonDocument::Compact),
            .extraEnvironment = {{u"KORVEL_LANG"_s, ZH ? u"zh"_s : u"en"_s}},
            .collect = ProgramRun::Collect::StandardOutput,
            .timeout = timeout};
}

Result<QJsonObject> parseAgentJson(const QByteArray &output) {
    const QString text = utf8Text(output).value_or(QString());
    const auto lines = QStringView(text).split(u'\n', Qt::SkipEmptyParts);
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        const QString candidate = trimSpaces(*line);
        if (!candidate.startsWith(u'{'))
            continue;
        const QJsonDocument reply = QJsonDocument::fromJson(candidate.toUtf8());
        return reply.isObject() ? Result(reply.object()) : Error{ErrorKind::UnreadableResponse, {}};
    }
    return Error{ErrorKind::UnreadableResponse, {}};
}

} // namespace korvel
