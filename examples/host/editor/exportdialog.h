#pragma once

#include "pictureexport.h"

#include <QDialog>
#include <QVariantMap>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QSpinBox;

namespace Host
{

// Where a picture goes and how: its choices are the values of an "Output" node.
class ExportDialog : public QDialog
{
    Q_OBJECT
public:
    // Begins with what an "Output" node says.
    ExportDialog(const QString& file, const QVariantMap& outputValues, QWidget* parent);

    QString file() const;
    FileFormat format() const;
    QVariantMap outputValues() const;

private Q_SLOTS:
    void choosePlace();
    void showFormat(); // what the format offers, and its ending on the name

private:
    void fillProfiles(const QVariantMap& values);
    void showRow(QWidget* control, bool visible);

    QLineEdit* m_file;
    QComboBox* m_format;
    QComboBox* m_depth;
    QSpinBox* m_quality;
    QSpinBox* m_pngCompression;
    QComboBox* m_tiffCompression;
    QComboBox* m_profile;
    QCheckBox* m_alpha;
    QFormLayout* m_form;
};

} // namespace Host
