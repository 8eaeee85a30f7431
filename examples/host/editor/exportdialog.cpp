#include "exportdialog.h"

#include <ondrel/color/colormanager.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

namespace Host
{
namespace
{

int numberOf(const QVariantMap& values, const char* field, int otherwise)
{
    bool ok = false;
    const double number = values.value(field).toString().toDouble(&ok);
    return ok ? int(number) : otherwise;
}

} // namespace

ExportDialog::ExportDialog(const QString& file, const QVariantMap& values, QWidget* parent)
    : QDialog(parent)
    , m_file(new QLineEdit(file, this))
    , m_format(new QComboBox(this))
    , m_depth(new QComboBox(this))
    , m_quality(new QSpinBox(this))
    , m_pngCompression(new QSpinBox(this))
    , m_tiffCompression(new QComboBox(this))
    , m_profile(new QComboBox(this))
    , m_alpha(new QCheckBox(tr("Keep &alpha"), this))
    , m_form(new QFormLayout(this))
{
    setWindowTitle(tr("Export picture"));
    m_format->addItems({"PNG", "JPEG", "TIFF"}); // in the order of FileFormat
    m_format->setCurrentIndex(int(formatOf(values)));
    const bool isTiff = format() == FileFormat::Tiff;
    m_depth->addItem(tr("8 bits"), "8 bits");
    m_depth->addItem(tr("16 bits"), "16 bits");
    m_depth->setCurrentIndex(m_depth->findData(values.value(isTiff ? "tiffdepth" : "pngdepth", "16 bits")));
    m_quality->setRange(0, 100);
    m_quality->setValue(numberOf(values, "quality", 90));
    m_pngCompression->setRange(0, 9);
    m_pngCompression->setValue(numberOf(values, "pngcompression", 6));
    for (const char* const name : {"None", "Deflate", "LZW", "PackBits"})
        m_tiffCompression->addItem(tr(name), name);
    m_tiffCompression->setCurrentIndex(m_tiffCompression->findData(values.value("tiffcompression", "Deflate")));
    m_alpha->setChecked(values.value(isTiff ? "tiffalpha" : "pngalpha").toString() == "With");
    fillProfiles(values);

    auto* const browse = new QPushButton(tr("Browse..."), this);
    auto* const place = new QHBoxLayout;
    place->addWidget(m_file, 1);
    place->addWidget(browse);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Export"));
    auto* const fileLabel = new QLabel(tr("&File"), this);
    fileLabel->setBuddy(m_file);
    m_form->addRow(fileLabel, place);
    m_form->addRow(tr("F&ormat"), m_format);
    m_form->addRow(tr("&Depth"), m_depth);
    m_form->addRow(tr("&Quality"), m_quality);
    m_form->addRow(tr("PNG &compression"), m_pngCompression);
    m_form->addRow(tr("&TIFF compression"), m_tiffCompression);
    m_form->addRow(tr("&Profile"), m_profile);
    m_form->addRow(QString(), m_alpha);
    m_form->addRow(buttons);
    layout()->setSizeConstraint(QLayout::SetFixedSize); // as high as the rows of the format
    m_file->setMinimumWidth(320);
    connect(browse, SIGNAL(clicked()), this, SLOT(choosePlace()));
    connect(m_format, SIGNAL(currentIndexChanged(int)), this, SLOT(showFormat()));
    connect(buttons, SIGNAL(accepted()), this, SLOT(accept()));
    connect(buttons, SIGNAL(rejected()), this, SLOT(reject()));
    showFormat();
}

// The first two entries are "Own" and "None"; the others are told by a hash.
void ExportDialog::fillProfiles(const QVariantMap& values)
{
    m_profile->addItem(tr("The picture's own"));
    m_profile->addItem(tr("None"));
    std::vector<std::pair<QString, std::array<unsigned char, 32>>> profiles;
    using Profile = Ondrel::ColorManager::ColorProfile;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(profiles, {Profile::RGB},
                                                           {Profile::BuiltIn, Profile::System, Profile::User});
    for (const auto& [name, hash] : profiles)
        m_profile->addItem(name, QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size())));
    const QString space = values.value("space").toString();
    const int chosen = space == "Chosen" ? m_profile->findData(values.value("profile")) : space == "None" ? 1 : 0;
    m_profile->setCurrentIndex(std::max(0, chosen));
}

QString ExportDialog::file() const
{
    return m_file->text();
}

FileFormat ExportDialog::format() const
{
    return FileFormat(m_format->currentIndex());
}

QVariantMap ExportDialog::outputValues() const
{
    const QString alpha = m_alpha->isChecked() ? "With" : "Without";
    QVariantMap values{{"format", m_format->currentText()},
                       {"pngdepth", m_depth->currentData()},
                       {"tiffdepth", m_depth->currentData()},
                       {"quality", QString::number(m_quality->value())},
                       {"pngcompression", QString::number(m_pngCompression->value())},
                       {"tiffcompression", m_tiffCompression->currentData()},
                       {"pngalpha", alpha},
                       {"tiffalpha", alpha}};
    values["space"] = m_profile->currentIndex() == 0 ? "Own" : m_profile->currentIndex() == 1 ? "None" : "Chosen";
    values["profile"] = m_profile->currentData();
    return values;
}

void ExportDialog::choosePlace()
{
    const QString chosen = QFileDialog::getSaveFileName(this, tr("Export to"), m_file->text(), QString(), nullptr,
                                                        QFileDialog::DontConfirmOverwrite); // that is asked at the end
    if (!chosen.isEmpty())
        m_file->setText(chosen);
    showFormat();
}

void ExportDialog::showFormat()
{
    const QFileInfo place(m_file->text());
    FileFormat named;
    const bool hasSuffix = formatFromName(place.fileName(), named); // a name may have other dots in it
    const QString name = hasSuffix ? place.completeBaseName() : place.fileName();
    m_file->setText(place.path() + "/" + name + "." + suffixOf(format()));
    showRow(m_depth, format() != FileFormat::Jpeg);
    showRow(m_alpha, format() != FileFormat::Jpeg);
    showRow(m_quality, format() == FileFormat::Jpeg);
    showRow(m_pngCompression, format() == FileFormat::Png);
    showRow(m_tiffCompression, format() == FileFormat::Tiff);
}

void ExportDialog::showRow(QWidget* control, bool visible)
{
    control->setVisible(visible);
    if (QWidget* const label = m_form->labelForField(control))
        label->setVisible(visible);
}

} // namespace Host
