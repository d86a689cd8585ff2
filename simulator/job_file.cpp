#include "simulator/job_file.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 LARGEST_JOB_FILE = 1 << 20;
constexpr int DEEPEST_VALUE = 32;

QJsonValue readValue(QXmlStreamReader &xml, int depth);

QJsonArray readArray(QXmlStreamReader &xml, int depth) {
    QJsonArray array;
    while (xml.readNextStartElement())
        array.append(readValue(xml, depth));
    return array;
}

QJsonObject readDictionary(QXmlStreamReader &xml, int depth) {
    QJsonObject dictionary;
    while (xml.readNextStartElement()) {
        if (xml.name() != "key"_L1) {
            xml.raiseError(u"a key was expected"_s);
            break;
        }
        const QString key = xml.readElementText();
        if (!xml.readNextStartElement()) {
            xml.raiseError(u"a value was expected"_s);
            break;
        }
        dictionary.insert(key, readValue(xml, depth));
    }
    return dictionary;
}

// Reads the element that the reader stands on, up to its end.
QJsonValue readValue(QXmlStreamReader &xml, int depth) {
    const QString type = xml.name().toString();
    if (depth > DEEPEST_VALUE)
        xml.raiseError(u"too deep"_s);
    else if (type == "dict"_L1)
        return readDictionary(xml, depth + 1);
    else if (type == "array"_L1)
        return readArray(xml, depth + 1);
    else if (type == "string"_L1)
        return xml.readElementText();
    else if (type == "integer"_L1)
        return xml.readElementText().trimmed().toLongLong();
    else if (type == "true"_L1 || type == "false"_L1)
        xml.skipCurrentElement();
    else
        xml.raiseError(u"unknown element"_s);
    return type == "true"_L1;
}

QStringList strings(const QJsonArray &array) {
    QStringList list;
    for (const QJsonValue value : array)
        list.append(value.toString());
    return list;
}

void writeString(QXmlStreamWriter &xml, const QString &key, const QString &value) {
    xml.writeTextElement("key"_L1, key);
    xml.writeTextElement("string"_L1, value);
}

void writeTrue(QXmlStreamWriter &xml, const QString &key) {
    xml.writeTextElement("key"_L1, key);
    xml.writeEmptyElement("true"_L1);
}

void writeContent(QXmlStreamWriter &xml, const JobFile &job) {
    writeString(xml, u"Label"_s, job.label);
    xml.writeTextElement("key"_L1, u"ProgramArguments"_s);
    xml.writeStartElement("array"_L1);
    for (const QString &argument : job.programArguments)
        xml.writeTextElement("string"_L1, argument);
    xml.writeEndElement();
    if (!job.environment.isEmpty()) {
        xml.writeTextElement("key"_L1, u"EnvironmentVariables"_s);
        xml.writeStartElement("dict"_L1);
        for (auto entry = job.environment.begin(); entry != job.environment.end(); ++entry)
            writeString(xml, entry.key(), entry.value());
        xml.writeEndElement();
    }
    if (job.runAtLoad)
        writeTrue(xml, u"RunAtLoad"_s);
    if (job.keepAlive)
        writeTrue(xml, u"KeepAlive"_s);
    if (!job.outputPath.isEmpty())
        writeString(xml, u"StandardOutPath"_s, job.outputPath);
    if (!job.errorPath.isEmpty())
        writeString(xml, u"StandardErrorPath"_s, job.errorPath);
}

} // namespace

bool isSafeLabel(const QString &label) {
    static const QRegularExpression safe(u"\\A[A-Za-z0-9_-][A-Za-z0-9._-]*\\z"_s);
    return safe.match(label).hasMatch();
}

std::optional<JobFile> parseJobFile(const QByteArray &text) {
    QXmlStreamReader xml(text);
    if (!xml.readNextStartElement() || xml.name() != "plist"_L1 || !xml.readNextStartElement())
        return std::nullopt;
    const QJsonObject content = readValue(xml, 0).toObject();
    if (xml.hasError())
        return std::nullopt;
    JobFile job;
    job.label = content.value("Label"_L1).toString();
    job.programArguments = strings(content.value("ProgramArguments"_L1).toArray());
    const QJsonObject environment = content.value("EnvironmentVariables"_L1).toObject();
    for (auto entry = environment.begin(); entry != environment.end(); ++entry)
        job.environment.insert(entry.key(), entry.value().toString());
    job.runAtLoad = content.value("RunAtLoad"_L1).toBool();
    job.keepAlive = content.value("KeepAlive"_L1).toBool();
    job.outputPath = content.value("StandardOutPath"_L1).toString();
    job.errorPath = content.value("StandardErrorPath"_L1).toString();
    if (!isSafeLabel(job.label) || job.programArguments.isEmpty())
        return std::nullopt;
    return job;
}

std::optional<JobFile> readJobFile(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > LARGEST_JOB_FILE)
        return std::nullopt;
    return parseJobFile(file.readAll());
}

QByteArray jobFileText(const JobFile &job) {
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeDTD(u"<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                 "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"_s);
    xml.writeStartElement("plist"_L1);
    xml.writeAttribute("version"_L1, u"1.0"_s);
    xml.writeStartElement("dict"_L1);
    writeContent(xml, job);
    xml.writeEndDocument();
    return text;
}

JobFile agentJobFile(const HomePaths &paths, const QString &program) {
    JobFile job;
    job.label = agentLabel();
    job.programArguments = {program, u"run"_s};
    job.runAtLoad = true;
    job.keepAlive = true;
    job.outputPath = paths.agentOutput();
    job.errorPath = paths.agentOutput();
    return job;
}

} // namespace korvel::sim
