#include "simulator/files.h"
#include "simulator/job_file.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

TEST(JobFileTest, WhatIsWrittenIsReadBack) {
    JobFile job = agentJobFile({u"/home/a & <b>"_s}, u"/Applications/\"x\"&<y>"_s);
    job.environment.insert(u"KORVEL_HOOK_PORT"_s, u"1&2"_s);
    const auto read = parseJobFile(jobFileText(job));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->label, job.label);
    EXPECT_EQ(read->programArguments, job.programArguments);
    EXPECT_EQ(read->environment, job.environment);
    EXPECT_TRUE(read->runAtLoad && read->keepAlive);
    EXPECT_EQ(read->outputPath, job.outputPath);
    EXPECT_EQ(read->errorPath, job.errorPath);
}

TEST(JobFileTest, MalformedOrUnsafeFilesAreRefused) {
    const auto file = [](const QByteArray &content) {
        return "<plist version=\"1.0\"><dict>" + content + "</dict></plist>";
    };
    const QByteArray label = "<key>Label</key><string>a.b</string>";
    const QByteArray program = "<key>ProgramArguments</key><array><string>/x</string></array>";
    EXPECT_TRUE(parseJobFile(file(label + program + "<key>Nice</key><integer>1</integer>")));
    for (const QByteArray &text :
         {QByteArray(), QByteArray("<plist/>"), file(label), file(program), file(label + program + "<key>Odd</key>"),
          file(label + program).chopped(9), file("<key>Label</key><string>../up</string>" + program),
          file(label + program + "<key>Date</key><date>2020-01-01</date>"),
          file(label + program + "<key>Deep</key>" + QByteArray("<array>").repeated(50) +
               QByteArray("</array>").repeated(50))})
        EXPECT_FALSE(parseJobFile(text)) << text.constData();
}

// The examples of RFC 7396, appendix A, whose both sides are objects.
TEST(MergePatchTest, AgreesWithThePublishedExamples) {
    const struct {
        const char *target, *patch, *result;
    } examples[] = {
        {R"({"a":"b"})", R"({"a":"c"})", R"({"a":"c"})"},
        {R"({"a":"b"})", R"({"b":"c"})", R"({"a":"b","b":"c"})"},
        {R"({"a":"b"})", R"({"a":null})", R"({})"},
        {R"({"a":"b","b":"c"})", R"({"a":null})", R"({"b":"c"})"},
        {R"({"a":["b"]})", R"({"a":"c"})", R"({"a":"c"})"},
        {R"({"a":"c"})", R"({"a":["b"]})", R"({"a":["b"]})"},
        {R"({"a":{"b":"c"}})", R"({"a":{"b":"d","c":null}})", R"({"a":{"b":"d"}})"},
        {R"({"a":[{"b":"c"}]})", R"({"a":[1]})", R"({"a":[1]})"},
        {R"({"e":null})", R"({"a":1})", R"({"e":null,"a":1})"},
        {R"({})", R"({"a":{"bb":{"ccc":null}}})", R"({"a":{"bb":{}}})"},
    };
    const auto object = [](const char *text) { return QJsonDocument::fromJson(text).object(); };
    for (const auto &each : examples)
        EXPECT_EQ(mergePatch(object(each.target), object(each.patch)), object(each.result)) << each.patch;
}

} // namespace korvel::sim
