#include "nodesupport.h"

#include <QFocusEvent>
#include <QGraphicsProxyWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace
{

using namespace OndrelTest;

// Notes the reasons of the focus events that reach it.
struct Proxy : QGraphicsProxyWidget {
    using QGraphicsProxyWidget::QGraphicsProxyWidget;
    void focusInEvent(QFocusEvent* event) override
    {
        reasons.push_back(event->reason());
        QGraphicsProxyWidget::focusInEvent(event);
    }
    std::vector<Qt::FocusReason> reasons;
};

// A control: its widget comes into the scene with the field.
struct WidgetField : Ondrel::InputField {
    WidgetField(QGraphicsItem* parent, QWidget* w)
        : InputField("control", parent, nullptr, "Control")
        , widget(w)
    {
    }
    void addedToScene() override
    {
        proxy = new Proxy(this);
        proxy->setWidget(widget);
    }
    QWidget* widget;
    Proxy* proxy = nullptr;
};

// Two line edits, between which Tab and Backtab move and do not turn around.
struct Composite : QWidget {
    Composite()
        : first(new QLineEdit(this))
        , second(new QLineEdit(this))
    {
        resize(100, 60);
        second->move(0, 30);
        setFocusPolicy(Qt::StrongFocus);
    }
    bool focusNextPrevChild(bool next) override
    {
        linkCut = linkCut && !graphicsProxyWidget();
        ++asked;
        QLineEdit* const from = next ? first : second;
        QLineEdit* const to = next ? second : first;
        if (focusWidget() != from)
            return false;
        to->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    QLineEdit *first, *second;
    int asked = 0;
    bool linkCut = true; // at every call
};

class NodeFocus : public testing::Test
{
protected:
    NodeFocus()
        : node(new TestNode)
    {
    }
    WidgetField* add(QWidget* widget) { return node->add(new WidgetField(node, widget)); }
    void show() { graph.add(node, {20, 20}); }
    // As a click on the control does.
    static void focus(const WidgetField* field)
    {
        field->proxy->setFocus();
        field->widget->setFocus();
        ASSERT_TRUE(field->widget->hasFocus());
    }
    bool go(bool next, const WidgetField* from)
    {
        return node->focusNextPrevChild(next, from, from ? from->proxy : nullptr);
    }

    GraphView graph;
    TestNode* node;
};

TEST_F(NodeFocus, GoesToTheNextControlAndBack)
{
    WidgetField* const first = add(new QLineEdit);
    WidgetField* const second = add(new QPushButton);
    show();
    focus(first);

    EXPECT_TRUE(go(true, first));
    EXPECT_EQ(graph.scene.focusItem(), second->proxy);
    EXPECT_TRUE(second->widget->hasFocus());
    EXPECT_TRUE(second->widget->testAttribute(Qt::WA_KeyboardFocusChange));
    EXPECT_EQ(second->proxy->reasons, std::vector<Qt::FocusReason>{Qt::TabFocusReason}) << "once, not twice";

    first->proxy->reasons.clear();
    EXPECT_TRUE(go(false, second));
    EXPECT_EQ(graph.scene.focusItem(), first->proxy);
    EXPECT_EQ(first->proxy->reasons, std::vector<Qt::FocusReason>{Qt::BacktabFocusReason});
}

TEST_F(NodeFocus, LeavesTheNodeAtBothEnds)
{
    WidgetField* const first = add(new QLineEdit);
    WidgetField* const second = add(new QLineEdit);
    show();
    focus(second);
    EXPECT_FALSE(go(true, second));
    focus(first);
    EXPECT_FALSE(go(false, first));
}

TEST_F(NodeFocus, EntersAtTheFirstOrTheLastControl)
{
    WidgetField* const first = add(new QLineEdit);
    add(new QLineEdit);
    WidgetField* const last = add(new QLineEdit);
    show();
    EXPECT_TRUE(go(true, nullptr));
    EXPECT_EQ(graph.scene.focusItem(), first->proxy);
    EXPECT_TRUE(go(false, nullptr));
    EXPECT_EQ(graph.scene.focusItem(), last->proxy);
    // A field of another node is as good as none.
    TestNode other;
    Ondrel::InputField* const stranger = other.addControl("stranger");
    EXPECT_TRUE(node->focusNextPrevChild(true, stranger, nullptr));
    EXPECT_EQ(graph.scene.focusItem(), first->proxy);
    EXPECT_TRUE(node->focusNextPrevChild(false, stranger, nullptr));
    EXPECT_EQ(graph.scene.focusItem(), last->proxy);
}

TEST_F(NodeFocus, PassesOverFieldsThatCannotTakeIt)
{
    WidgetField* const first = add(new QLineEdit);
    node->addInput("anchored", "Anchored");
    node->addControl("bare", "Bare");
    WidgetField* const label = add(new QLabel("Text"));
    WidgetField* const hidden = add(new QLineEdit);
    WidgetField* const hiddenWidget = add(new QLineEdit);
    WidgetField* const last = add(new QLineEdit);
    show();
    label->proxy->setFocusPolicy(Qt::NoFocus);
    hidden->setVisible(false);
    hiddenWidget->proxy->setVisible(false);
    focus(first);
    EXPECT_TRUE(go(true, first));
    EXPECT_EQ(graph.scene.focusItem(), last->proxy);
    EXPECT_TRUE(go(false, last));
    EXPECT_EQ(graph.scene.focusItem(), first->proxy);
}

TEST_F(NodeFocus, OfANodeWithoutControlsGoesOn)
{
    node->addInput("anchored", "Anchored");
    show();
    EXPECT_FALSE(go(true, nullptr));
    EXPECT_FALSE(go(false, nullptr));
    TestNode empty;
    EXPECT_FALSE(empty.focusNextPrevChild(true, nullptr, nullptr));
    EXPECT_FALSE(empty.focusNextPrevChild(false, nullptr, nullptr));
}

TEST_F(NodeFocus, MovesInsideACompositeControlFirst)
{
    auto* const composite = new Composite;
    WidgetField* const field = add(composite);
    WidgetField* const last = add(new QLineEdit);
    show();
    field->proxy->setFocus();
    composite->first->setFocus();
    ASSERT_EQ(composite->focusWidget(), composite->first);

    EXPECT_TRUE(go(true, field));
    EXPECT_EQ(composite->focusWidget(), composite->second);
    EXPECT_EQ(graph.scene.focusItem(), field->proxy);
    EXPECT_EQ(composite->asked, 1);
    EXPECT_TRUE(composite->linkCut) << "the focus change must not bounce into the scene";
    EXPECT_EQ(composite->graphicsProxyWidget(), field->proxy) << "and the link is back";

    EXPECT_TRUE(go(false, field));
    EXPECT_EQ(composite->focusWidget(), composite->first);

    composite->second->setFocus();
    EXPECT_TRUE(go(true, field));
    EXPECT_EQ(graph.scene.focusItem(), last->proxy);
    EXPECT_TRUE(composite->linkCut);
    EXPECT_EQ(composite->graphicsProxyWidget(), field->proxy);
}

TEST_F(NodeFocus, GoesIntoACompositeControlThatHadNoFocusInside)
{
    auto* const composite = new Composite;
    composite->setFocusProxy(composite->first);
    WidgetField* const field = add(composite);
    add(new QLineEdit);
    show();
    ASSERT_EQ(composite->focusWidget(), nullptr);
    EXPECT_TRUE(go(true, field));
    EXPECT_EQ(composite->focusWidget(), composite->first);
}

TEST_F(NodeFocus, DoesNotStayInAControlThatHasNoPartsToGoTo)
{
    WidgetField* const first = add(new QLineEdit);
    WidgetField* const second = add(new QLineEdit);
    show();
    ASSERT_EQ(first->widget->focusWidget(), nullptr) << "it never had the focus";
    EXPECT_TRUE(go(true, first));
    EXPECT_EQ(graph.scene.focusItem(), second->proxy);
}

TEST_F(NodeFocus, FiltersNothingButFocusInEvents)
{
    QFocusEvent in(QEvent::FocusIn), out(QEvent::FocusOut);
    QEvent other(QEvent::User);
    QObject object;
    EXPECT_TRUE(node->eventFilter(&object, &in));
    EXPECT_FALSE(node->eventFilter(&object, &out));
    EXPECT_FALSE(node->eventFilter(&object, &other));
    show();
}

} // namespace
