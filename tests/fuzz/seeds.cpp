// ondrel_fuzz_seeds DIR: writes small honest inputs of every kind into DIR/<target>/, for the fuzzer to start from.

#include "tests/support/dngfile.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/imagebuffer.h>
#include <ondrel/resources/resourceengine.h>

#include <lcms2.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <cstring>

namespace
{

using Bytes = std::vector<unsigned char>;

QString folder(const QString& root, const char* target)
{
    const QString path = root + '/' + target;
    QDir().mkpath(path);
    return path;
}

void write(const QString& file, const Bytes& bytes)
{
    QFile out(file);
    if (out.open(QIODevice::WriteOnly))
        out.write(reinterpret_cast<const char*>(bytes.data()), qint64(bytes.size()));
}

void writeText(const QString& file, const char* text)
{
    write(file, Bytes(text, text + std::strlen(text)));
}

Bytes read(const QString& file)
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = in.readAll();
    return Bytes(bytes.begin(), bytes.end());
}

Ondrel::Image picture()
{
    Ondrel::Image image(19, 13);
    for (unsigned int i = 0; i < 19 * 13 * 4; ++i)
        image.data[i] = static_cast<unsigned short>(i * 2654435761u >> 13);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    return image;
}

// An Exif block with one entry, the orientation: little-endian, as the reader understands it.
Bytes exif(unsigned char orientation)
{
    const unsigned char block[] = {0xFF, 0xE1, 0, 34, 'E',         'x', 'i', 'f', 0,    0,    'I', 'I',
                                   42,   0,    8, 0,  0,           0,   1,   0,   0x12, 0x01, 3,   0,
                                   1,    0,    0, 0,  orientation, 0,   0,   0,   0,    0,    0,   0};
    return Bytes(std::begin(block), std::end(block));
}

void pngSeeds(const QString& path)
{
    const Ondrel::Image image = picture();
    for (const unsigned int alpha : {0u, 1u})
        for (const unsigned int depth : {0u, 1u}) {
            const ResourceEngine::ExportPNGSettings settings{9, Ondrel::EmbeddedColorProfile, alpha, depth};
            ResourceEngine::ExportPNG(path + QString("/alpha%1depth%2.png").arg(alpha).arg(depth), image, settings,
                                      nullptr, nullptr);
        }
    const ResourceEngine::ExportPNGSettings plain{9, Ondrel::NoneColorProfile, 0, 0};
    ResourceEngine::ExportPNG(path + "/plain.png", image, plain, nullptr, nullptr);
}

void jpegSeeds(const QString& path)
{
    const Ondrel::Image image = picture();
    for (const bool progressive : {false, true})
        for (const auto& profile : {Ondrel::NoneColorProfile, Ondrel::EmbeddedColorProfile}) {
            const ResourceEngine::ExportJPEGSettings settings{80, true, progressive, 0, profile};
            const QString file =
                path + QString("/%1%2.jpg").arg(progressive).arg(int(profile == Ondrel::EmbeddedColorProfile));
            ResourceEngine::ExportJPEG(file, image, settings, nullptr, nullptr);
        }
    Bytes turned = read(path + "/00.jpg");
    if (turned.size() > 2) {
        const Bytes block = exif(6);
        turned.insert(turned.begin() + 2, block.begin(), block.end());
        write(path + "/turned.jpg", turned);
    }
}

void tiffSeeds(const QString& path)
{
    const Ondrel::Image image = picture();
    for (const unsigned int compression : {0u, 1u, 2u, 3u})
        for (const unsigned int depth : {0u, 1u}) {
            const ResourceEngine::ExportTIFFSettings settings{
                depth ? Ondrel::EmbeddedColorProfile : Ondrel::NoneColorProfile, depth, depth, compression};
            Bytes data;
            ResourceEngine::ExportTIFFToMemory(data, image, settings, nullptr, nullptr);
            write(path + QString("/%1%2.tif").arg(compression).arg(depth), data);
        }
}

void rawSeeds(const QString& path)
{
    using OndrelTest::DngFile;
    constexpr DngFile::Kind kinds[] = {DngFile::Kind::Bayer, DngFile::Kind::XTrans, DngFile::Kind::Monochrome,
                                       DngFile::Kind::Linear};
    for (const DngFile::Kind kind : kinds)
        for (const int orientation : {1, 3, 6, 8}) {
            DngFile file;
            file.kind = kind;
            file.width = 24; // LibRaw refuses sides below 22
            file.height = 22;
            file.orientation = static_cast<unsigned short>(orientation);
            file.black = 256;
            file.white = 4095;
            file.samples.resize(24 * 22 * (kind == DngFile::Kind::Linear ? 3 : 1));
            for (std::size_t i = 0; i < file.samples.size(); ++i)
                file.samples[i] = static_cast<std::uint16_t>(i * 2654435761u >> 20 & 4095);
            write(path + QString("/%1_%2.dng").arg(int(kind)).arg(orientation), file.bytes());
        }
}

void iccSeeds(const QString& path)
{
    void* const profiles[] = {Ondrel::Create_sRGBColorProfile(), Ondrel::CreateLinearProPhotoRGBColorProfile(),
                              Ondrel::CreateLabColorProfile(), cmsCreateInkLimitingDeviceLink(cmsSigCmykData, 300)};
    int number = 0;
    for (void* const profile : profiles) {
        Bytes data;
        Ondrel::GetICCProfileData(profile, data);
        write(path + QString("/%1.icc").arg(number++), data);
        if (profile)
            cmsCloseProfile(profile);
    }
}

void textSeeds(const QString& colors, const QString& values)
{
    writeText(colors + "/four", "65535,0,1,32768");
    writeText(colors + "/gaps", "1,,2,,3");
    writeText(colors + "/words", "a,+2, 3,-4");
    writeText(values + "/gradient", "#000000,red,transparent,#80ff0000");
    writeText(values + "/number", "-12.5e-3");
    writeText(values + "/words", "nan,infinity,0x10");
}

void nodeSeeds(const QString& nodes, const QString& orders)
{
    writeText(nodes + "/empty.xml", "<node><input/><output/></node>");
    writeText(nodes + "/controls.xml",
              "<node><input><i name='source'/><i type='preview'/><i type='label'>Text</i>"
              "<i name='a' type='slider' mode='double' min='0' max='2.5' value='1.25' postfix=' px' "
              "groovegradient='black,red'>A</i>"
              "<i name='b' type='rangeslider' left='10' right='90' bargradient='#fff,#000'>B</i>"
              "<i name='c' type='combobox' choices='One,--,Two' initial='2'>C</i>"
              "<i name='d' type='combobox' style='thumbnails' choices='One,Two'>D</i>"
              "<i name='e' type='color' value='1,2,3,4'>E</i><i name='f' type='colorprofile'>F</i>"
              "<i name='g' type='resource'/><i name='h' type='hidden'/></input>"
              "<output><o name='image'>Image</o></output></node>");
    writeText(nodes + "/fieldsets.xml",
              "<node><input><i name='m' type='fieldsetcombobox' initial='1'><label>M</label><fieldset choice='Fast'/>"
              "<fieldset choice='Mask'><f name='mask'>Mask</f><f type='slider'/></fieldset></i></input>"
              "<output/></node>");
    writeText(nodes + "/entities.xml",
              "<!DOCTYPE n [<!ENTITY e '<i type=\"slider\">S</i>'>]><n><input>&e;&e;</input><output/></n>");
    writeText(nodes + "/malformed.xml", "<node><input><i/><!-- c --><i type='knob'/></input><output/></node>");
    writeText(orders + "/plain", "0,3,1");
    writeText(orders + "/others", "007, 4,-1,,4.0,a,18446744073709551615,7");
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: ondrel_fuzz_seeds DIR\n", stderr);
        return 2;
    }
    const QString root = QCoreApplication::arguments()[1];
    pngSeeds(folder(root, "png"));
    jpegSeeds(folder(root, "jpeg"));
    tiffSeeds(folder(root, "tiff"));
    rawSeeds(folder(root, "raw"));
    iccSeeds(folder(root, "icc"));
    textSeeds(folder(root, "color_text"), folder(root, "xml_text"));
    nodeSeeds(folder(root, "node_xml"), folder(root, "order_text"));
    Bytes buffer;
    WriteImageBuffer(picture().toPtr(), buffer);
    write(folder(root, "image_buffer") + "/picture", buffer);
    return 0;
}
