#include "croppanel.h"

#include "cropmode.h"

#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/pushbutton.h>

#include <QLabel>
#include <QVBoxLayout>

namespace
{

struct NamedAspect {
    const char* name;
    Aspect aspect;
};
const NamedAspect kAspects[] = {{QT_TRANSLATE_NOOP("CropPanel", "Free"), {0, 0}},
                                {"1 : 1", {1, 1}},
                                {"3 : 2", {3, 2}},
                                {"4 : 3", {4, 3}},
                                {"16 : 9", {16, 9}},
                                {"2 : 3", {2, 3}}};

} // namespace

CropPanel::CropPanel(CropMode& mode, QWidget* parent)
    : QWidget(parent)
    , m_mode(mode)
    , m_aspects(new Ondrel::ListComboBox(this))
    , m_numbers(new QLabel(this))
{
    m_aspects->setObjectName("aspect");
    for (const NamedAspect& entry : kAspects)
        m_aspects->addItem(tr(entry.name));
    auto* reset = new Ondrel::PushButton(tr("Whole picture"), this);
    reset->setObjectName("reset");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Ratio"), this));
    layout->addWidget(m_aspects);
    layout->addWidget(m_numbers);
    layout->addWidget(reset);
    layout->addWidget(new QLabel(tr("Arrow keys: move the frame\nSpace: choose a handle"), this));
    layout->addStretch();
    connect(m_aspects, SIGNAL(currentIndexChanged(int)), this, SLOT(chooseAspect(int)));
    connect(reset, SIGNAL(clicked()), &mode, SLOT(resetFrame()));
    connect(&mode, SIGNAL(frameChanged()), this, SLOT(showNumbers()));
    showNumbers();
}

void CropPanel::chooseAspect(int index)
{
    const Aspect aspect = kAspects[index].aspect;
    m_mode.chooseAspect(aspect.width, aspect.height);
}

void CropPanel::showNumbers()
{
    const Ondrel::RectT<int>& frame = m_mode.frame();
    m_numbers->setText(tr("Left %1\nTop %2\nWidth %3\nHeight %4")
                           .arg(frame.left())
                           .arg(frame.top())
                           .arg(frame.width())
                           .arg(frame.height()));
}
