#include "export/web_forms.h"
#include "export/web_page_options.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

// What the web page's forms ask, driven with the keyboard and mouse.

using namespace vessa;

namespace {

template <typename T> T* control(QWidget& form, const char* name) {
    T* found = form.findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

void retype(QLineEdit* field, const QString& text) {
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

} // namespace

TEST(WebForm, TheRatioIsHeldWhileTheBoxIsCheckedAndOnlyDigitsAreTyped) {
    WebForm form;
    form.preset(true);
    auto* width = control<QLineEdit>(form, "WidthField");
    auto* height = control<QLineEdit>(form, "HeightField");
    EXPECT_EQ(width->text(), "320");
    EXPECT_EQ(height->text(), "240");
    EXPECT_TRUE(control<QCheckBox>(form, "AspectCheck")->isChecked());
    EXPECT_TRUE(control<QRadioButton>(form, "Option1")->isChecked());
    EXPECT_EQ(form.options().SelectedOption, "Center");

    retype(width, QStringLiteral("640"));
    EXPECT_EQ(height->text(), "480");
    retype(height, QStringLiteral("100"));
    EXPECT_EQ(width->text(), "133");
    QTest::keyClicks(height, QStringLiteral("x-1.")); // no letters, signs or points
    EXPECT_EQ(height->text(), "1001");

    // Unchecked, the fields go their own ways; checked again, the new shape is held.
    QTest::mouseClick(control<QCheckBox>(form, "AspectCheck"), Qt::LeftButton);
    retype(width, QStringLiteral("300"));
    retype(height, QStringLiteral("100"));
    EXPECT_EQ(width->text(), "300");
    QTest::mouseClick(control<QCheckBox>(form, "AspectCheck"), Qt::LeftButton);
    retype(height, QStringLiteral("50"));
    EXPECT_EQ(width->text(), "150");

    QTest::mouseClick(control<QRadioButton>(form, "Option2"), Qt::LeftButton);
    QTest::mouseClick(control<QCheckBox>(form, "NavigatorCheck"), Qt::LeftButton);
    EXPECT_EQ(form.options().SelectedOption, "Right");
    EXPECT_TRUE(form.options().ShowNavigator);
}

TEST(WebPageOptions, APageIsNamedAndEndsInHtmlOrHtm) {
    EXPECT_EQ(pageNameProblem(QString()), "Please specify a name.");
    EXPECT_EQ(pageNameProblem(QStringLiteral("page.txt")),
              "The file name must end in '.html' or in '.htm'.");
    EXPECT_EQ(pageNameProblem(QStringLiteral("page.HTM")), QString());
    EXPECT_EQ(pageNameProblem(QStringLiteral("page.html")), QString());
}

TEST(WebSaveForm, OkWithANameThatIsNoPageSaysSoAndStaysOpen) {
    WebSaveForm form(QDir::homePath());
    form.show();
    form.setFileName(QStringLiteral("page.txt"));
    QString told;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        told = box->text();
        box->accept();
    });
    QTest::mouseClick(control<QPushButton>(form, "OkButton"), Qt::LeftButton);
    EXPECT_EQ(told, "The file name must end in '.html' or in '.htm'.");
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(form.result(), 0);

    form.setFileName(QStringLiteral("page.HTM"));
    QTest::mouseClick(control<QPushButton>(form, "DesktopButton"), Qt::LeftButton);
    EXPECT_EQ(form.folder(), QDir::homePath());
    QTest::mouseClick(control<QPushButton>(form, "OkButton"), Qt::LeftButton);
    EXPECT_EQ(form.result(), QDialog::Accepted);
}

TEST(PreWebSaveForm, CancelLeavesDoSaveFalseAndSaveWorldSetsIt) {
    PreWebSaveForm form;
    form.show();
    QTest::mouseClick(control<QPushButton>(form, "CancelButton"), Qt::LeftButton);
    EXPECT_FALSE(form.DoSave);
    form.show();
    QTest::mouseClick(control<QPushButton>(form, "SaveButton"), Qt::LeftButton);
    EXPECT_TRUE(form.DoSave);
}
