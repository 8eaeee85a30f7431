#include "plan.h"

#include "imageimport.h"
#include "memoryneed.h"
#include "pictureexport.h"
#include "picturesize.h"
#include "saturated.h"
#include "values.h"

#include <ondrel/resources/resourceengine.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <glob.h>

#include <algorithm>
#include <set>
#include <stdexcept>

using namespace Host;

namespace
{

// Why the plan cannot be made.
struct Refusal {
    QString sentence;
};

NodeId nodeNamed(const Graph& graph, const QString& name)
{
    const NodeRecord* const node = graph.nodeByName(name);
    if (!node)
        throw Refusal{QString("The project has no node \"%1\".").arg(name)};
    return node->id;
}

const NodeType& typeOf(const NodeRecord& node, const NodeTypes& types)
{
    const NodeType* const type = types.find(node.type);
    if (!type)
        throw Refusal{QString("There is no plug-in for \"%1\".").arg(node.name)};
    return *type;
}

QString pictureField(const NodeRecord& node, const NodeTypes& types)
{
    for (const InputInfo& input : typeOf(node, types).inputs) {
        if (input.kind == "resource")
            return input.name;
    }
    throw Refusal{QString("\"%1\" takes no picture.").arg(node.name)};
}

QVariant addPicture(const QString& file, bool raw, Plan& plan, std::size_t memory)
{
    const QString place = QFileInfo(file).absoluteFilePath();
    const std::size_t bytes =
        memory == 0 ? 0 : saturatedSum(kProgramBytes + bytesInStore(plan.stored), bytesToImport(place));
    if (bytes > memory)
        throw Refusal{
            QString("\"%1\" needs up to %2 to be read, more than --memory allows.").arg(file, memoryText(bytes))};
    const Import import = raw ? importRawImage(place) : importImage(place);
    if (import.id.id == 0)
        throw Refusal{QString("\"%1\" cannot be read as a picture.").arg(file)};
    if (!import.note.isEmpty())
        plan.notes.append(import.note);
    plan.stored.push_back(import.id);
    return QVariant::fromValue(import.id);
}

void apply(const Options::Setting& setting, Plan& plan, const NodeTypes& types, std::size_t memory)
{
    NodeRecord& node = plan.graph.nodes.at(nodeNamed(plan.graph, setting.node));
    const NodeType& type = typeOf(node, types);
    const InputInfo* const input = type.input(setting.field);
    if (!input)
        throw Refusal{QString("\"%1\" has no field \"%2\".").arg(setting.node, setting.field)};
    QVariant value;
    if (input->kind == "resource")
        value = addPicture(setting.value, takesRaw(type), plan, memory);
    else if (!valueFromText(setting.value, input->kind, input->choices, value))
        throw Refusal{QString("\"%1\" is no value for \"%2\" of \"%3\"%4.")
                          .arg(setting.value, setting.field, setting.node,
                               input->choices.isEmpty() ? QString() : ": " + input->choices.join(", "))};
    node.values.insert(setting.field, value);
}

// By bytes, so that every machine of a split run has the same order.
std::vector<std::string> matches(const QString& pattern)
{
    glob_t found{};
    const int status = glob(QFile::encodeName(pattern).constData(), GLOB_NOSORT | GLOB_BRACE, nullptr, &found);
    std::vector<std::string> files;
    for (std::size_t i = 0; status == 0 && i < found.gl_pathc; ++i)
        files.emplace_back(found.gl_pathv[i]);
    globfree(&found);
    std::sort(files.begin(), files.end());
    if (files.empty())
        throw Refusal{QString("No file matches \"%1\".").arg(pattern)};
    return files;
}

std::vector<const NodeRecord*> outputNodes(const Graph& graph, const NodeTypes& types)
{
    std::vector<const NodeRecord*> nodes;
    for (const auto& [id, record] : graph.nodes) {
        const NodeType* const type = types.find(record.type);
        if (type && type->entry.nodeName == "Output")
            nodes.push_back(&record);
    }
    if (nodes.empty())
        throw Refusal{"The project has no node \"Output\"."};
    return nodes;
}

QString outputFile(const Job& job, const NodeRecord& node, const NodeTypes& types, const Options& options)
{
    QString inFileName = node.name;
    inFileName.replace('/', '_');
    const QString source = job.input.isEmpty() ? options.project : job.input;
    const std::pair<QString, QString> words[] = {
        {"name", QFileInfo(source).completeBaseName()},
        {"number", QString::number(job.number)},
        {"output", inFileName},
        {"ext", suffixOf(formatOf(completeValues(node, typeOf(node, types))))},
    };
    // In one go: what is put in may have braces.
    QString file;
    for (int at = 0; at < options.pattern.size();) {
        const auto word = std::find_if(std::begin(words), std::end(words), [&](const auto& candidate) {
            return options.pattern.midRef(at).startsWith('{' + candidate.first + '}');
        });
        file += word == std::end(words) ? QString(options.pattern[at]) : word->second;
        at += word == std::end(words) ? 1 : word->first.size() + 2;
    }
    FileFormat format;
    if (!formatFromName(file, format))
        throw Refusal{QString("\"%1\" has no ending of a format: png, jpg, tif.").arg(file)};
    return file;
}

// The files of all pictures that the graph names.
std::vector<std::string> picturesOf(const Graph& graph)
{
    std::vector<std::string> files;
    for (const Ondrel::ResourceId id : resourcesOf(graph)) {
        ResourceEngine::Format format;
        std::vector<unsigned char> data;
        std::string file;
        if (ResourceEngine::Get().CopyData(id, format, data, file))
            files.push_back(file);
    }
    return files;
}

// No picture may overwrite another one, nor what it is made of.
void checkOutputs(const std::vector<Job>& jobs, const std::vector<std::string>& inputs)
{
    std::set<QString> taken;
    for (const std::string& input : inputs)
        taken.insert(QFileInfo(QFile::decodeName(QByteArray::fromStdString(input))).canonicalFilePath());
    for (const Job& job : jobs) {
        const QFileInfo output(job.output);
        const QString place = output.exists() ? output.canonicalFilePath() : QDir::cleanPath(output.absoluteFilePath());
        if (!taken.insert(place).second)
            throw Refusal{QString("\"%1\" would be written twice, or over an input; see --out.").arg(job.output)};
    }
}

void addJobs(Plan& plan, const NodeTypes& types, const Options& options)
{
    const std::vector<std::string> inputs =
        options.overGlob.isEmpty() ? std::vector<std::string>{std::string()} : matches(options.overGlob);
    std::vector<Job> all;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        for (const NodeRecord* const node : outputNodes(plan.graph, types)) {
            Job job;
            job.number = int(i + 1);
            job.input = QFile::decodeName(QByteArray::fromStdString(inputs[i]));
            job.outputNode = node->id;
            job.output = outputFile(job, *node, types, options);
            job.isDone = options.resume && QFileInfo(job.output).isFile();
            all.push_back(job);
        }
    }
    std::vector<std::string> used = picturesOf(plan.graph);
    used.insert(used.end(), inputs.begin(), inputs.end());
    checkOutputs(all, used);
    for (const Job& job : all) {
        if ((job.number - 1) % options.shards == options.shard - 1)
            plan.jobs.push_back(job);
    }
}

} // namespace

bool takesRaw(const NodeType& type)
{
    return type.entry.nodeName.split(' ').contains("RAW");
}

Plan makePlan(const Project& project, const NodeTypes& types, const Options& options)
{
    Plan plan;
    plan.graph = project.graph;
    plan.stored = resourcesOf(project.graph);
    try {
        for (const Options::Setting& setting : options.settings)
            apply(setting, plan, types, options.memory);
        for (const Options::Input& input : options.inputs) {
            NodeRecord& node = plan.graph.nodes.at(nodeNamed(plan.graph, input.node));
            const QString field = pictureField(node, types);
            node.values.insert(field, addPicture(input.file, takesRaw(typeOf(node, types)), plan, options.memory));
        }
        if (!options.overGlob.isEmpty()) {
            plan.overNode = nodeNamed(plan.graph, options.overNode);
            plan.overField = pictureField(*plan.graph.node(plan.overNode), types);
        }
        addJobs(plan, types, options);
    } catch (const Refusal& refusal) {
        plan.error = refusal.sentence;
    }
    return plan;
}
