#pragma once

#include <QWidget>

namespace Ondrel
{
class ListComboBox;
}
class CropMode;
class QLabel;

// The content of the dock widget: the ratio, the frame in numbers, and a way back to the whole picture.
class CropPanel : public QWidget
{
    Q_OBJECT
public:
    CropPanel(CropMode& mode, QWidget* parent);

private Q_SLOTS:
    void chooseAspect(int index);
    void showNumbers();

private:
    CropMode& m_mode;
    Ondrel::ListComboBox* m_aspects;
    QLabel* m_numbers;
};
