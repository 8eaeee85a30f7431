#include "options.h"

#include "devices.h"

#include <ondrel/color/colorprofiles.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>

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
    std::vector<float> numbers;
    const bool ok = parseNumbers(text, numbers) && numbers.size() == 1;
    operation = RotateBy{ok ? numbers[0] : 0};
    return ok;
}

bool parseBlur(const QString& text, Operation& operation)
{
    std::vector<float> radii;
    if (!parseNumbers(text, radii) || radii.size() > 2)
        return false;
    operation = BlurBy{radii.front(), radii.back()};
    return radii.front() >= 0 && radii.back() >= 0 && std::max(radii.front(), radii.back()) <= 10000;
}

bool parseCorners(const QString& text, Operation& operation)
{
    std::vector<float> numbers;
    if (!parseNumbers(text, numbers) || numbers.size() != 8)
        return false;
    MoveCorners move;
    for (std::size_t i = 0; i < 4; ++i)
        move.corners[i] = QPointF(double(numbers[2 * i]), double(numbers[2 * i + 1]));
    operation = move;
    return true;
}

bool parseTemperature(const QString& text, Operation& operation)
{
    std::vector<float> numbers;
    if (!parseNumbers(text, numbers) || numbers.size() > 2)
        return false;
    const WhiteBalance light{numbers[0], numbers.size() > 1 ? numbers[1] : 1000};
    operation = light;
    return light.kelvin >= 1667 && light.kelvin <= 25000 && light.tint >= 100 && light.tint <= 2000;
}

bool parseProof(const QString& text, Operation& operation)
{
    operation = ProofFor{text};
    return !text.isEmpty() && text != "embedded" && text != "none";
}

// The operations in the order in which they stand on the command line; a repeated option is a repeated operation.
bool parseOperations(const QCommandLineParser& parser, Options& options, QString& message)
{
    const QHash<QString, bool (*)(const QString&, Operation&)> parsers{{"size", parseSize},
                                                                       {"crop", parseCrop},
                                                                       {"rotate", parseRotation},
                                                                       {"blur", parseBlur},
                                                                       {"perspective", parseCorners},
                                                                       {"gradient", parseGradient},
                                                                       {"temperature", parseTemperature},
                                                                       {"proof", parseProof}};
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
    if (parser.isSet("develop") && parser.isSet("preview")) {
        message = "--develop and --preview exclude each other";
        return false;
    }
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
    parser.addPositionalArgument("IN...", "PNG, JPEG, TIFF or camera RAW files");
    parser.addPositionalArgument("OUT", "a .png, .jpg or .tif file, or a folder");
    parser.addOptions({
        {"profile", "Convert to this profile: a listed name, an ICC file, \"embedded\" (default) or \"none\".", "P"},
        {"intent", "perceptual (default), relative, saturation or absolute.", "I"},
        {"size", "Scale to fit W x H pixels (W x H! ignores the aspect) or to N percent.", "WxH|N%"},
        {"filter", "nearest, bilinear or bicubic (default).", "F"},
        {"crop", "Keep W x H pixels from column X, row Y.", "WxH+X+Y"},
        {"rotate", "Turn counter-clockwise by ANGLE degrees.", "ANGLE"},
        {"mode", "Rotations keep the size, grow to the bounding box (default) or cut to what is inscribed.",
         "keep|bounding|inscribed"},
        {"blur", "Blur by a radius of R pixels, or of RX across and RY down.", "R[,RY]"},
        {"edge", "What blurs find outside: clamp (default), blank or repeat.", "E"},
        {"perspective", "Move the corners, from the top left clockwise, to these pixels.", "X0,Y0,...,X3,Y3"},
        {"gradient",
         "Draw linear,X1,Y1,X2,Y2 or radial,CX,CY,RX,RY,DEGREES,FX,FY in fractions of the sides, followed by colours "
         "such as #ff8000 or, with alpha first, #80ff8000@0.5.",
         "G"},
        {"mix", "Gradients mix their colours in rgb (default) or lch.", "M"},
        {"temperature", "Balance for a light of K kelvin; a TINT below 1000 takes green away.", "K[,TINT]"},
        {"proof", "Show how it would come out on the device of this profile, with --intent.", "P"},
        {"gamut", "Proofs mark colours out of gamut in red."},
        {"depth", "8 (default) or 16 bits a sample in PNG and TIFF.", "N"},
        {"quality", "JPEG quality, 1 to 100 (default 90).", "N"},
        {"compression", "PNG: 0 to 9 (default 6). TIFF: none, deflate (default), lzw or packbits.", "C"},
        {"no-alpha", "Leave the alpha channel out."},
        {"format", "In a folder: png, jpeg or tiff instead of the input's own.", "F"},
        {"raw", "Read camera RAW files only. Without it files that are nothing else are tried as RAW."},
        {"develop", "Develop RAW files: as-shot white balance, mosaic interpolated. Implies --raw."},
        {"preview", "Take the preview that a RAW file carries instead of its picture. Implies --raw."},
        {"display", "Also render for the display and save that as PNG.", "FILE"},
        {"list-profiles", "List the colour profiles and stop."},
        {"info", "Describe a file and stop.", "FILE"},
        {"opencl", "Blur and scale (bilinear) on OpenCL device P:D or, without it, on the first one.", "P:D"},
        {"list-devices", "List the OpenCL devices and stop."},
        {"timings", "Print one line a stage with its time."},
        {"quiet", "Print errors only."},
    });
}

} // namespace

bool parseOptions(const QStringList& arguments, Options& options, QString& message)
{
    QCommandLineParser parser;
    declare(parser);
    if (!parser.parse(withDeviceValue(arguments))) {
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
    if (parser.isSet("list-devices")) {
        options.mode = Options::Mode::ListDevices;
        return true;
    }
    options.opencl = parser.isSet("opencl");
    options.device = parser.value("opencl");
    options.display = parser.value("display");
    options.profile = parser.value("profile");
    options.alpha = !parser.isSet("no-alpha");
    options.timings = parser.isSet("timings");
    options.quiet = parser.isSet("quiet");
    options.develop = parser.isSet("develop");
    options.preview = parser.isSet("preview");
    options.raw = parser.isSet("raw") || options.develop || options.preview;
    options.format = parser.value("format").toLower();
    options.gamutWarning = parser.isSet("gamut");
    unsigned int filter = unsigned(options.filter), format = 0, edge = 0, mode = RotateSizeBounding, mix = 0;
    const bool ok = choose(parser, "filter", {{"nearest", 0}, {"bilinear", 1}, {"bicubic", 2}}, filter, message) &&
                    choose(parser, "edge", {{"clamp", 0}, {"blank", 1}, {"repeat", 2}}, edge, message) &&
                    choose(parser, "mode", {{"keep", 0}, {"bounding", 1}, {"inscribed", 2}}, mode, message) &&
                    choose(parser, "mix", {{"rgb", 0}, {"lch", 1}}, mix, message) &&
                    choose(parser, "format", {{"png", 0}, {"jpeg", 1}, {"tiff", 2}}, format, message) &&
                    choose(parser, "intent", {{"perceptual", 0}, {"relative", 1}, {"saturation", 2}, {"absolute", 3}},
                           options.intent, message) &&
                    parseEncoding(parser, options, message) && parseOperations(parser, options, message) &&
                    parseFiles(parser, options, message);
    options.filter = Ondrel::FilterMethod(filter);
    options.edge = GaussianEdge(edge);
    options.rotateSize = RotateSize(mode);
    options.mixLightnessAndHue = mix == 1;
    return ok;
}
