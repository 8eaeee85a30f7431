#include "options.h"

#include <CLI/CLI.hpp>

namespace
{

QString local(const std::string& text)
{
    return QString::fromLocal8Bit(text.data(), int(text.size()));
}

// The two sides of the first "=".
std::pair<QString, QString> sides(const QString& text)
{
    const int equals = text.indexOf('=');
    if (equals <= 0)
        throw CLI::ValidationError('"' + text.toStdString() + "\" has no name and \"=\"");
    return {text.left(equals), text.mid(equals + 1)};
}

Options::Setting settingOf(const std::string& text)
{
    const auto [name, value] = sides(local(text));
    const int dot = name.lastIndexOf('.'); // a node's name may have dots too
    if (dot <= 0 || dot + 1 == name.size())
        throw CLI::ValidationError("--set takes NODE.FIELD=VALUE, not \"" + text + '"');
    return {name.left(dot), name.mid(dot + 1), value};
}

Options::Input inputOf(const std::string& text)
{
    const auto [node, file] = sides(local(text));
    return {node, file};
}

void readShard(const std::string& text, Options& options)
{
    const QStringList numbers = local(text).split('/');
    bool ok = numbers.size() == 2;
    options.shard = ok ? numbers[0].toInt(&ok) : 0;
    options.shards = ok ? numbers[1].toInt(&ok) : 0;
    if (!ok || options.shard < 1 || options.shards < options.shard)
        throw CLI::ValidationError("--shard takes I/N with I from 1 to N, not \"" + text + '"');
}

} // namespace

bool readOptions(int argc, char** argv, Options& options, int& status)
{
    CLI::App app("Renders a project, over many pictures if asked to. Exit status: 0 if all went well, 1 if some\n"
                 "pictures failed, 2 if it could not begin, 130 if it was interrupted.",
                 "ondrel-render");
    std::string project, shard, pattern = options.pattern.toStdString(), plugins;
    std::vector<std::string> settings, inputs, over;
    app.add_option("PROJECT", project, "The project file")->required();
    app.add_option("--set", settings, "NODE.FIELD=VALUE: a value other than the project's")->expected(1)->take_all();
    app.add_option("--input", inputs, "NODE=FILE: a picture other than the project's")->expected(1)->take_all();
    app.add_option("--over", over, "NODE 'GLOB': render once for each file that matches, as the picture of the node")
        ->expected(2);
    app.add_option("--out", pattern,
                   "Where pictures go: {name} of the input, {number}, {output} node, {ext} of its format.\n"
                   "An ending such as .jpg chooses the format.")
        ->capture_default_str();
    app.add_option("--jobs", options.jobs, "So many pictures at once")->check(CLI::Range(1, 1024));
    app.add_option("--memory", options.memory, "A bound, in bytes or as 512K, 800M, 4G")
        ->transform(CLI::AsSizeValue(false));
    app.add_option("--shard", shard, "I/N: the I-th of N shares of the inputs");
    app.add_option("--plugins", plugins, "The folder with the plug-ins");
    app.add_flag("--resume", options.resume, "Leave out pictures that are there already");
    app.add_flag("--dry-run", options.dryRun, "Only list what would be done");
    app.add_flag("--json", options.json, "One JSON object a line on standard output");
    try {
        app.parse(argc, argv);
        for (const std::string& text : settings)
            options.settings.push_back(settingOf(text));
        for (const std::string& text : inputs)
            options.inputs.push_back(inputOf(text));
        if (!shard.empty())
            readShard(shard, options);
    } catch (const CLI::ParseError& error) {
        status = app.exit(error) == 0 ? 0 : 2;
        return false;
    }
    options.project = local(project);
    options.pattern = local(pattern);
    options.plugins = local(plugins);
    if (!over.empty()) {
        options.overNode = local(over[0]);
        options.overGlob = local(over[1]);
    }
    return true;
}
