#include <ondrel/core/xml.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace
{

class TintedSvg : public testing::Test
{
protected:
    QString write(const QByteArray& shape)
    {
        const QString name = m_directory.filePath("icon.svg");
        QFile file(name);
        if (file.open(QIODevice::WriteOnly))
            file.write("<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4' viewBox='0 0 4 4'>" + shape +
                       "</svg>");
        return name;
    }

    static QRgb middle(QSvgRenderer& renderer)
    {
        QImage image(4, 4, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        renderer.render(&painter);
        return image.pixel(2, 2);
    }

private:
    QTemporaryDir m_directory;
};

TEST_F(TintedSvg, EveryOccurrenceIsReplaced)
{
    const QString file = write("<rect width='4' height='4' fill='#000000' stroke='#000000'/>");
    QSvgRenderer renderer;
    Ondrel::LoadSvgWithReplace(renderer, file, "#000000", "#ff8000");
    EXPECT_TRUE(renderer.isValid());
    EXPECT_EQ(middle(renderer), qRgb(255, 128, 0));
}

TEST_F(TintedSvg, OtherSpellingsOfTheColourStay)
{
    const QString file = write("<rect width='4' height='4' fill='#000'/>");
    QSvgRenderer renderer;
    Ondrel::LoadSvgWithReplace(renderer, file, "#000000", "#ff8000");
    EXPECT_EQ(middle(renderer), qRgb(0, 0, 0));
}

TEST_F(TintedSvg, AFileThatCannotBeOpenedLeavesTheRenderer)
{
    QSvgRenderer renderer;
    Ondrel::LoadSvgWithReplace(renderer, write("<rect width='4' height='4' fill='#00ff00'/>"), "x", "y");
    Ondrel::LoadSvgWithReplace(renderer, "/nowhere/icon.svg", "#000000", "#ff0000");
    EXPECT_TRUE(renderer.isValid());
    EXPECT_EQ(middle(renderer), qRgb(0, 255, 0));
}

TEST_F(TintedSvg, OnlyRegularFilesAreOpened)
{
    QSvgRenderer renderer;
    const QString file = write("<rect width='4' height='4' fill='#00ff00'/>");
    Ondrel::LoadSvgWithReplace(renderer, file, "x", "y");
    const QString folder = QFileInfo(file).absolutePath(), pipe = folder + "/pipe";
    ASSERT_EQ(mkfifo(qPrintable(pipe), 0600), 0); // opening it would wait for a writer
    Ondrel::LoadSvgWithReplace(renderer, pipe, "#000000", "#ff0000");
    Ondrel::LoadSvgWithReplace(renderer, folder, "#000000", "#ff0000");
    EXPECT_EQ(middle(renderer), qRgb(0, 255, 0));
}

TEST_F(TintedSvg, WhatIsNoPictureLeavesAnInvalidRenderer)
{
    QSvgRenderer renderer;
    Ondrel::LoadSvgWithReplace(renderer, write("<rect width='4' height='4'/>"), "svg", "nonsense");
    EXPECT_FALSE(renderer.isValid());
}

} // namespace
