// ondrel-gallery PHOTO FOLDER: fills a folder with a page, README.md, that shows every pixel operation with its
// parameters, on a photograph and on a test chart.

#include "gallery.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/resources/resourceengine.h>

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QSaveFile>

#include <cstdio>
#include <memory>

namespace
{

constexpr int kColumns = 3;

bool loadPhoto(const QString& file, Ondrel::Image& photo)
{
    Ondrel::ResourceId id;
    std::shared_ptr<const Ondrel::Image> image;
    ResourceEngine& store = ResourceEngine::Get();
    if (!store.AddImage(file.toStdString(), id) || !store.CopyImage(id, image, Ondrel::EmbeddedColorProfile, {}))
        return false;
    photo = Scale(*image, 600, std::max(1u, 600 * image->height / image->width), Ondrel::FilterMethod::Bicubic);
    return true;
}

// On squares of grey, so that transparency can be seen.
QImage shown(const Ondrel::Image& image)
{
    const QImage rendered = Ondrel::ColorTransformer::toQImage(image, false);
    QImage backed(rendered.size(), QImage::Format_RGB32);
    Checkerboard(backed, 8, 8, QColor(118, 118, 118), QColor(138, 138, 138));
    QPainter(&backed).drawImage(0, 0, rendered);
    return backed;
}

QString fileName(const QString& section, std::size_t index)
{
    QString name = section.toLower();
    name.replace(QRegExp("[^a-z0-9]+"), "-");
    return QString("%1-%2.jpg").arg(name).arg(index + 1);
}

bool addSection(const Section& section, const Inputs& inputs, const QDir& folder, QString& page)
{
    page += QString("\n## %1\n\n").arg(section.title);
    for (std::size_t first = 0; first < section.pictures.size(); first += kColumns) {
        QString pictures = "|", captions = "|";
        for (std::size_t i = first; i < first + kColumns; ++i) {
            if (i >= section.pictures.size()) {
                pictures += " |";
                captions += " |";
                continue;
            }
            const Picture& picture = section.pictures[i];
            const QString file = fileName(section.title, i);
            if (!shown(picture.make(inputs)).save(folder.filePath(file), "JPEG", 92))
                return false;
            pictures += QString(" ![](%1) |").arg(file);
            captions += QString(" `%1`<br>%2 |").arg(picture.call, picture.remark);
        }
        page += pictures + "\n" + (first == 0 ? "|---|---|---|\n" : "") + captions + "\n";
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    Inputs inputs;
    if (arguments.size() != 3 || !loadPhoto(arguments[1], inputs.photo) || !QDir().mkpath(arguments[2])) {
        std::fputs("usage: ondrel-gallery PHOTO FOLDER\n", stderr);
        return 2;
    }
    Ondrel::ColorManager::get(); // display management is on from here
    inputs.chart = paintChart();
    inputs.smallChart = SubImage(inputs.chart, 0, 0, 40, 28);

    const QDir folder(arguments[2]);
    QString page =
        "# Gallery\n\nEvery pixel operation with its parameters, made by `./dev gallery`. `photo` is 600 pixels "
        "wide, `chart` is drawn, and `small` is a corner of it, shown with each pixel as a square.\n";
    for (const auto& sections : {scaling(), geometry(), blurring(), warping(), gradients(), painting(), colour()})
        for (const Section& section : sections)
            if (!addSection(section, inputs, folder, page))
                return 1;
    QSaveFile file(folder.filePath("README.md"));
    return file.open(QIODevice::WriteOnly) && file.write(page.toUtf8()) >= 0 && file.commit() ? 0 : 1;
}
