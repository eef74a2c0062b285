// Widgets as controls and forms.

#include "platform/value/failure.h"
#include "platform/window/widgetcontrol.h"
#include "platform/window/widgetform.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QPlainTextEdit>

namespace {

qint32 failureOf(const std::function<void()> &step) {
    const auto failure = Attempt(step);
    return failure ? failure->number() : 0;
}

QStringList rowsOf(const controls::Control &control) {
    QStringList rows;
    for (int row = 0; row < control.ListCount(); ++row)
        rows += std::get<QString>(control.List(row).held());
    return rows;
}

constexpr qint32 invalidPropertyValue = 380;

TEST(WidgetControl, AComboTakesAnyTextAndAListOnlyItsRows) {
    QComboBox combo;
    combo.setEditable(true);
    QComboBox list;
    QListWidget box;
    for (QWidget *widget :
         {static_cast<QWidget *>(&combo), static_cast<QWidget *>(&list), static_cast<QWidget *>(&box)}) {
        SCOPED_TRACE(widget->metaObject()->className());
        window::WidgetControl control(*widget);
        control.AddItem("before");
        control.SetItems({"a", "b", "a"});
        control.AddItem("C");
        EXPECT_EQ(rowsOf(control), (QStringList{"a", "b", "a", "C"}));
        EXPECT_EQ(control.ListIndex(), -1) << "nothing is chosen by itself";
        EXPECT_EQ(control.Text(), "");
        control.SetText("a");
        EXPECT_EQ(control.ListIndex(), 0) << "the first of two";
        control.SetListIndex(3);
        EXPECT_EQ(control.Text(), "C");
        EXPECT_EQ(control.Value(), Value("C"));
        const bool takesAny = widget == &combo;
        EXPECT_EQ(failureOf([&] { control.SetText("c"); }), takesAny ? 0 : invalidPropertyValue);
        EXPECT_EQ(control.Text(), takesAny ? "c" : "C") << "rows are told apart by case";
        control.Clear();
        EXPECT_EQ(control.ListCount(), 0);
        EXPECT_EQ(control.ListIndex(), -1);
    }
}

TEST(WidgetControl, ColumnsBesideTheFirstKeepTheirKind) {
    QListWidget box;
    window::WidgetControl control(box);
    control.AddItem("");
    control.SetList(0, 0, "what was done");
    control.SetList(0, 1, DateTime{46000.5});
    control.SetList(0, 2, qint16{20});
    EXPECT_EQ(control.List(0), Value("what was done"));
    EXPECT_EQ(control.List(0, 1), Value(DateTime{46000.5}));
    EXPECT_EQ(control.List(0, 2), Value(qint16{20}));
    EXPECT_EQ(control.List(0, 3), Value());
    for (const int row : {-1, 1})
        EXPECT_EQ(failureOf([&] { static_cast<void>(control.List(row)); }), failures::subscriptOutOfRange);
}

TEST(WidgetControl, WhatAWidgetLacksFailsAndSoDoesOneThatHasGone) {
    auto check = std::make_unique<QCheckBox>("Done");
    window::WidgetControl control(*check);
    EXPECT_EQ(control.Value(), Value(false));
    control.SetValue(qint32{-1});
    EXPECT_TRUE(check->isChecked());
    EXPECT_EQ(failureOf([&] { control.AddItem("a"); }), failures::memberMissing);
    EXPECT_EQ(failureOf([&] { static_cast<void>(control.ListIndex()); }), failures::memberMissing);
    check.reset();
    EXPECT_EQ(failureOf([&] { static_cast<void>(control.Value()); }), failures::objectNotSet);
}

TEST(WidgetForm, ShowsItselfAndGivesItsControlsByName) {
    QWidget window;
    window.setWindowTitle("Ticket");
    auto *note = new QPlainTextEdit(&window);
    note->setObjectName("txtNote");
    note->setGeometry(10, 20, 30, 40);
    window::WidgetForm form(window);
    EXPECT_EQ(form.Controls("txtOther"), nullptr);
    const auto control = form.Controls("txtNote");
    ASSERT_NE(control, nullptr);
    control->SetText("kept\nas it is");
    EXPECT_EQ(note->toPlainText(), "kept\nas it is");
    EXPECT_EQ(control->place(), QRect(10, 20, 30, 40));
    control->SetBackColor(0x030201);
    EXPECT_EQ(control->BackColor(), 0x030201);

    window.show();
    // Neither may hide the window that it is asked of.
    form.SetTopMost(true);
    form.SetInTaskBar(true);
    EXPECT_TRUE(form.Visible());
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    form.SetInTaskBar(false);
    EXPECT_EQ(window.windowType(), Qt::Tool);
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint)) << "it stays above the others";
}

} // namespace
