#include "options.h"

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <cstdlib>

namespace Viewer
{
namespace
{

[[noreturn]] void refuse(const QString& reason)
{
    std::fprintf(stderr, "ondrel-nodeviewer: %s\n", qUtf8Printable(reason));
    std::exit(2);
}

// "photograph.image blur.image": an output and an input.
Wires::Link readLink(const QString& line)
{
    const QStringList ends = line.simplified().split(' ');
    const QStringList from = ends.value(0).split('.'), to = ends.value(1).split('.');
    if (ends.size() != 2 || from.size() != 2 || to.size() != 2)
        refuse(QStringLiteral("no wire: \"%1\"").arg(line.trimmed()));
    return {from[0], from[1], to[0], to[1]};
}

std::vector<Wires::Link> readLinks(const QString& path)
{
    std::vector<Wires::Link> links;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        refuse(path + ": cannot be read");
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
        if (!line.trimmed().isEmpty())
            links.push_back(readLink(line));
    }
    return links;
}

} // namespace

Options readOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Shows node files as nodes, prints their values as they change, and shows the files "
        "anew when they change. Wires are drawn from anchor to anchor.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("files", "Node files.", "FILE...");
    parser.addOptions({{"grab", "Save a picture of the canvas (PNG), and stop.", "FILE"},
                       {"scale", "Device pixels to a pixel in that picture (default 1).", "NUMBER"},
                       {"wires",
                        "Draw the wires of a file, with an output and an input in each line, as in "
                        "\"photograph.image blur.image\".",
                        "FILE"},
                       {"image", "The picture in the previews: PNG, JPEG or TIFF.", "FILE"},
                       {"select", "Select a node by its name.", "NAME"},
                       {"primary", "Give a node the emblem of the primary preview.", "NAME"}});
    if (!parser.parse(arguments))
        refuse(parser.errorText());
    if (parser.isSet("help"))
        parser.showHelp();
    if (parser.isSet("version"))
        parser.showVersion();
    Options options;
    options.files = parser.positionalArguments();
    if (options.files.isEmpty())
        refuse("no node files (--help tells more)");
    if (parser.isSet("wires"))
        options.links = readLinks(parser.value("wires"));
    options.picture = parser.value("image");
    options.selected = parser.value("select");
    options.primary = parser.value("primary");
    options.grab = parser.value("grab");
    if (parser.isSet("scale"))
        options.scale = parser.value("scale").toDouble();
    if (!(options.scale >= 0.1 && options.scale <= 4))
        refuse("--scale takes a number from 0.1 to 4");
    return options;
}

} // namespace Viewer
