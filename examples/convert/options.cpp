#include "options.h"

#include <ondrel/color/colorprofiles.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

namespace
{

bool inRange(const QString& text, int low, int high, int& value)
{
    bool ok = false;
    value = text.toInt(&ok);
    return ok && value >= low && value <= high;
}

bool parseSize(const QString& text, Operation& operation)
{
    static const QRegularExpression percent("^(\\d+(?:\\.\\d+)?)%$");
    static const QRegularExpression pixels("^(\\d{1,5})x(\\d{1,5})(!?)$");
    ScaleTo size;
    if (const auto match = percent.match(text); match.hasMatch()) {
        size.unit = "Percentage";
        size.aspect = "Ignore";
        size.percent = match.captured(1).toFloat();
        operation = size;
        return size.percent > 0;
    }
    const auto match = pixels.match(text);
    size.unit = "Pixels";
    size.aspect = match.captured(3).isEmpty() ? "Keep" : "Ignore";
    size.width = match.captured(1).toUInt();
    size.height = match.captured(2).toUInt();
    operation = size;
    return match.hasMatch() && size.width > 0 && size.height > 0;
}

bool parseCrop(const QString& text, Operation& operation)
{
    static const QRegularExpression form("^(\\d{1,9})x(\\d{1,9})\\+(\\d{1,9})\\+(\\d{1,9})$");
    const auto match = form.match(text);
    const CropTo crop{match.captured(1).toUInt(), match.captured(2).toUInt(), match.captured(3).toUInt(),
                      match.captured(4).toUInt()};
    operation = crop;
    return match.hasMatch() && crop.width > 0 && crop.height > 0;
}

bool parseRotation(const QString& text, Operation& operation)
{
    int angle = 0;
    const bool ok = inRange(text, 90, 270, angle) && angle % 90 == 0;
    operation = QuarterTurns{angle / 90};
    return ok;
}

// The operations in the order in which they stand on the command line; a repeated option is a repeated operation.
bool parseOperations(const QCommandLineParser& parser, Options& options, QString& message)
{
    const QHash<QString, bool (*)(const QString&, Operation&)> parsers{
        {"size", parseSize}, {"crop", parseCrop}, {"rotate", parseRotation}};
    QHash<QString, int> seen;
    for (const QString& name : parser.optionNames()) {
        const auto parse = parsers.value(name);
        if (!parse)
            continue;
        const QString value = parser.values(name).at(seen[name]++);
        Operation operation;
        if (!parse(value, operation)) {
            message = QString("--%1 does not understand \"%2\"").arg(name, value);
            return false;
        }
        options.operations.push_back(operation);
    }
    return true;
}

bool choose(const QCommandLineParser& parser, const QString& name, const QHash<QString, unsigned int>& choices,
            unsigned int& result, QString& message)
{
    if (!parser.isSet(name))
        return true;
    const auto found = choices.find(parser.value(name).toLower());
    if (found == choices.end()) {
        message = QString("--%1 does not know \"%2\"").arg(name, parser.value(name));
        return false;
    }
    result = *found;
    return true;
}

bool parseEncoding(const QCommandLineParser& parser, Options& options, QString& message)
{
    int depth = 8;
    if (parser.isSet("depth") && (!inRange(parser.value("depth"), 8, 16, depth) || (depth != 8 && depth != 16))) {
        message = "--depth is 8 or 16";
        return false;
    }
    options.sixteenBits = depth == 16;
    if (parser.isSet("quality") && !inRange(parser.value("quality"), 1, 100, options.quality)) {
        message = "--quality is a number from 1 to 100";
        return false;
    }
    if (int level = 0; parser.isSet("compression") && inRange(parser.value("compression"), 0, 9, level)) {
        options.pngLevel = level;
        return true;
    }
    return choose(parser, "compression", {{"none", 0}, {"deflate", 1}, {"lzw", 2}, {"packbits", 3}},
                  options.tiffCompression, message);
}

bool parseFiles(const QCommandLineParser& parser, Options& options, QString& message)
{
    options.inputs = parser.positionalArguments();
    if (parser.isSet("info")) {
        options.mode = Options::Mode::Info;
        options.inputs.prepend(parser.value("info"));
        return true;
    }
    if (options.inputs.isEmpty() || (options.inputs.size() == 1 && options.display.isEmpty())) {
        message = "an input and an output are needed";
        return false;
    }
    if (options.inputs.size() > 1)
        options.output = options.inputs.takeLast();
    options.outputIsFolder = options.output.endsWith('/') || QFileInfo(options.output).isDir();
    if (options.inputs.size() > 1 && !options.outputIsFolder) {
        message = "several inputs need a folder as output";
        return false;
    }
    return true;
}

void declare(QCommandLineParser& parser)
{
    parser.setApplicationDescription("Converts photographs between files, sizes and colour profiles.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("IN...", "PNG, JPEG or TIFF files");
    parser.addPositionalArgument("OUT", "a .png, .jpg or .tif file, or a folder");
    parser.addOptions({
        {"profile", "Convert to this profile: a listed name, an ICC file, \"embedded\" (default) or \"none\".", "P"},
        {"intent", "perceptual (default), relative, saturation or absolute.", "I"},
        {"size", "Scale to fit W x H pixels (W x H! ignores the aspect) or to N percent.", "WxH|N%"},
        {"filter", "nearest, bilinear or bicubic (default).", "F"},
        {"crop", "Keep W x H pixels from column X, row Y.", "WxH+X+Y"},
        {"rotate", "Turn counter-clockwise by 90, 180 or 270 degrees.", "ANGLE"},
        {"depth", "8 (default) or 16 bits a sample in PNG and TIFF.", "N"},
        {"quality", "JPEG quality, 1 to 100 (default 90).", "N"},
        {"compression", "PNG: 0 to 9 (default 6). TIFF: none, deflate (default), lzw or packbits.", "C"},
        {"no-alpha", "Leave the alpha channel out."},
        {"format", "In a folder: png, jpeg or tiff instead of the input's own.", "F"},
        {"display", "Also render for the display and save that as PNG.", "FILE"},
        {"list-profiles", "List the colour profiles and stop."},
        {"info", "Describe a file and stop.", "FILE"},
        {"timings", "Print one line a stage with its time."},
        {"quiet", "Print errors only."},
    });
}

} // namespace

bool parseOptions(const QStringList& arguments, Options& options, QString& message)
{
    QCommandLineParser parser;
    declare(parser);
    if (!parser.parse(arguments)) {
        message = parser.errorText();
        return false;
    }
    if (parser.isSet("help") || parser.isSet("help-all")) {
        options.mode = Options::Mode::Help;
        message = parser.helpText();
        return true;
    }
    if (parser.isSet("version")) {
        options.mode = Options::Mode::Version;
        message = "ondrel-convert 0.1.0\n";
        return true;
    }
    if (parser.isSet("list-profiles")) {
        options.mode = Options::Mode::ListProfiles;
        return true;
    }
    options.display = parser.value("display");
    options.profile = parser.value("profile");
    options.alpha = !parser.isSet("no-alpha");
    options.timings = parser.isSet("timings");
    options.quiet = parser.isSet("quiet");
    options.format = parser.value("format").toLower();
    unsigned int filter = unsigned(options.filter), format = 0;
    const bool ok = choose(parser, "filter", {{"nearest", 0}, {"bilinear", 1}, {"bicubic", 2}}, filter, message) &&
                    choose(parser, "format", {{"png", 0}, {"jpeg", 1}, {"tiff", 2}}, format, message) &&
                    choose(parser, "intent", {{"perceptual", 0}, {"relative", 1}, {"saturation", 2}, {"absolute", 3}},
                           options.intent, message) &&
                    parseEncoding(parser, options, message) && parseOperations(parser, options, message) &&
                    parseFiles(parser, options, message);
    options.filter = Ondrel::FilterMethod(filter);
    return ok;
}
