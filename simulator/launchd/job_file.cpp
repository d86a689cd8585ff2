#include "simulator/launchd/job_file.h"

#include "simulator/home/files.h"

#include <QJsonArray>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 MAX_JOB_FILE_BYTES = 1 << 20;

/// Reads the current element up to its end.
QJsonValue readValue(QXmlStreamReader &xml) {
    const QString type = xml.name().toString();
    QJsonObject dictionary;
    QJsonArray array;
    if (type == "dict"_L1) {
        while (xml.readNextStartElement()) {
            const QString key = xml.readElementText();
            if (xml.readNextStartElement())
                dictionary.insert(key, readValue(xml));
        }
        return dictionary;
    }
    if (type == "array"_L1) {
        while (xml.readNextStartElement())
            array.append(readValue(xml));
        return array;
    }
    const QString text = xml.readElementText();
    return type == "true"_L1 || type == "false"_L1 ? QJsonValue(type == "true"_L1) : QJsonValue(text);
}

void writeValue(QXmlStreamWriter &xml, const QJsonValue &value) {
    if (value.isBool())
        return xml.writeEmptyElement(value.toBool() ? u"true"_s : u"false"_s);
    if (value.isString())
        return xml.writeTextElement("string"_L1, value.toString());
    xml.writeStartElement(value.isArray() ? u"array"_s : u"dict"_s);
    for (const QJsonValue each : value.toArray())
        writeValue(xml, each);
    const QJsonObject object = value.toObject();
    for (auto each = object.begin(); each != object.end(); ++each) {
        xml.writeTextElement("key"_L1, each.key());
        writeValue(xml, each.value());
    }
    xml.writeEndElement();
}

} // namespace

bool isSafeLabel(const QString &label) { return !label.isEmpty() && !label.contains(u'/') && !label.startsWith(u'.'); }

QJsonObject readJobFile(const QString &path) {
    QXmlStreamReader xml(readRegularFile(path, MAX_JOB_FILE_BYTES).value_or(QByteArray()));
    if (!xml.readNextStartElement() || !xml.readNextStartElement())
        return {};
    const QJsonObject job = readValue(xml).toObject();
    return xml.hasError() || !isSafeLabel(job["Label"_L1].toString()) ? QJsonObject() : job;
}

bool writeAgentJob(const HomePaths &paths, const QString &program, const QJsonObject &environment) {
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDTD(u"<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                 "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"_s);
    xml.writeStartElement("plist"_L1);
    xml.writeAttribute("version"_L1, u"1.0"_s);
    writeValue(xml, QJsonObject{{u"Label"_s, AGENT_LABEL},
                                {u"ProgramArguments"_s, QJsonArray{program, u"run"_s}},
                                {u"EnvironmentVariables"_s, environment},
                                {u"RunAtLoad"_s, true},
                                {u"KeepAlive"_s, true},
                                {u"StandardOutPath"_s, paths.agentOutput()},
                                {u"StandardErrorPath"_s, paths.agentOutput()}});
    xml.writeEndDocument();
    return replaceFile(paths.jobFile(), text);
}

} // namespace korvel::sim
