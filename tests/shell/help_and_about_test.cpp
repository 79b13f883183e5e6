#include "controls/accessible_names.h"
#include "shell/about_form.h"
#include "shell/help_and_tools.h"
#include "shell/help_form.h"
#include "shell/main_form_harness.h"
#include "support/qt_print.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTextDocument>
#include <gtest/gtest.h>

namespace vessa {
namespace {

void writeFile(const QString& path, const QByteArray& text) {
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

// A home folder with a guide page whose links lead out of the guide, to the network, to
// a world's page and to another page of the guide, in that order.
struct HelpHome {
    QTemporaryDir dir;
    QString home = dir.path() + QStringLiteral("/home/");
    QString guide = home + QStringLiteral("Help/index.html");
    QString world = home + QStringLiteral("Worlds/Examples/Two Worlds");

    HelpHome() {
        writeFile(dir.path() + QStringLiteral("/outside.html"), "<p>outside</p>");
        writeFile(guide, "<p><a href=\"../../outside.html\">out</a> "
                         "<a href=\"http://example.org/\">net</a> "
                         "<a href=\"../Worlds/Examples/Two%20Worlds/World_VessaHelp.html\">two</a> "
                         "<a href=\"next.html\">next</a></p>");
        writeFile(home + QStringLiteral("Help/next.html"), "<p>next page</p>");
        writeFile(world + QStringLiteral("/World_VessaHelp.html"), "<p>the second world</p>");
        writeFile(world + QStringLiteral("/World_Scene.py"), "");
    }
};

TEST(HelpForm, ALinkToAWorldsPageLoadsThatWorldAndLinksOutOfTheGuideAreNotFollowed) {
    HelpHome h;
    HelpForm form({h.home + QStringLiteral("Help"), h.home + QStringLiteral("Worlds")});
    QSignalSpy worlds(&form, &HelpForm::worldWanted);
    form.navigate(h.guide);
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    QTextBrowser& browser = form.browser();
    browser.setFocus();
    // Tab goes from link to link and Return follows one, as a reader without a mouse does.
    const auto follow = [&] {
        QTest::keyClick(&browser, Qt::Key_Tab);
        QTest::keyClick(&browser, Qt::Key_Return);
    };
    follow(); // out of the home folder
    follow(); // the network
    EXPECT_EQ(form.currentPage(), h.guide);
    EXPECT_TRUE(worlds.isEmpty());
    follow();
    ASSERT_EQ(worlds.size(), 1);
    EXPECT_EQ(QDir(worlds[0][0].toString()).canonicalPath(), QDir(h.world).canonicalPath());
    EXPECT_EQ(QFileInfo(form.currentPage()).fileName(), QStringLiteral("World_VessaHelp.html"));
    EXPECT_TRUE(browser.toPlainText().contains(QStringLiteral("the second world")));

    form.navigate(h.guide);
    for (int link = 0; link < 3; ++link)
        QTest::keyClick(&browser, Qt::Key_Tab);
    follow();
    EXPECT_EQ(QFileInfo(form.currentPage()).fileName(), QStringLiteral("next.html"));
    EXPECT_EQ(worlds.size(), 1);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Vessa's Illustrated Guide to Brightmere"));
}

TEST(HelpForm, PicturesComeOnlyFromTheFoldersItMayShow) {
    HelpHome h;
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(h.home + QStringLiteral("Help/inside.png")));
    ASSERT_TRUE(picture.save(h.dir.path() + QStringLiteral("/outside.png")));
    writeFile(h.home + QStringLiteral("Help/pictures.html"),
              "<img src=\"inside.png\"><img src=\"../../outside.png\">");
    HelpForm form({h.home + QStringLiteral("Help")});
    form.navigate(h.home + QStringLiteral("Help/pictures.html"));
    QTextDocument* page = form.browser().document();
    const QUrl here = QUrl::fromLocalFile(h.home + QStringLiteral("Help/pictures.html"));
    const auto shows = [&](const char* name) {
        const QVariant found = page->resource(QTextDocument::ImageResource,
                                              here.resolved(QUrl(QString::fromLatin1(name))));
        return !found.value<QImage>().isNull() || !found.value<QByteArray>().isEmpty();
    };
    EXPECT_TRUE(shows("inside.png"));
    EXPECT_FALSE(shows("../../outside.png"));
}

// The Help and Site Specific menus of the main window over a scripted engine.
struct HelpMenus : testing::MainFormHarness {
    HelpHome h;
    QStringList shownPages;
    HelpAndTools commands{
        *form, renderForm, state, engine, reporter, world, [this](const QString& page) {
            shownPages << page;
        }};

    HelpMenus() {
        state.HomeDir = h.home;
        scripted->answers[QStringLiteral("GetVersionText")] = QStringLiteral("4.7.1");
    }

    QStringList engineCalls(const QString& method) const {
        QStringList found;
        for (qsizetype i = 0; i < log.calls.size(); ++i)
            if (log.calls[i] == method)
                found << log.arguments[i].value(0).toString();
        return found;
    }
};

TEST(HelpMenus, ViewOnlineHelpOpensTheFirstExampleWithItsPageOrElseTheGuide) {
    HelpMenus m;
    m.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m.form.get()));
    QSignalSpy pages(m.form.get(), &MainForm::helpPageWanted);
    // No first example in this home: the guide's first page.
    QTest::keyClick(m.form.get(), Qt::Key_F1);
    EXPECT_EQ(m.shownPages, QStringList{m.h.guide});
    EXPECT_TRUE(m.engineCalls(QStringLiteral("LoadWorld")).isEmpty());

    const QString first = m.h.home + QStringLiteral("Worlds/Examples/Example1 - First World");
    writeFile(first + QStringLiteral("/World_Scene.py"), "");
    writeFile(first + QStringLiteral("/World_VessaHelp.html"), "<p>first</p>");
    m.form->findChild<QAction*>(QStringLiteral("HelpViewMenuButton"))->trigger();
    EXPECT_EQ(m.engineCalls(QStringLiteral("LoadWorld")), QStringList{first});
    ASSERT_EQ(pages.size(), 1);
    EXPECT_EQ(pages[0][0].toString(), first + QStringLiteral("/World_VessaHelp.html"));
}

TEST(HelpMenus, TheSiteMenuShowsTheEnginesRowsAndRunsTheOneChosen) {
    HelpMenus m;
    auto* site = m.form->findChild<QMenu*>(QStringLiteral("SiteSpecificMenuButton"));
    m.commands.fillSiteMenu();
    EXPECT_FALSE(site->menuAction()->isVisible());

    m.scripted->answers[QStringLiteral("GetSiteSpecific")] = QVariantList{
        QVariant(QVariantList{QStringLiteral("Say hello"), QStringLiteral("print('hi')")}),
        QVariant(QVariantList{QStringLiteral("Lab"), QStringLiteral("Connect()")})};
    m.commands.fillSiteMenu();
    EXPECT_TRUE(site->menuAction()->isVisible());
    ASSERT_EQ(site->actions().size(), 2);
    EXPECT_EQ(site->actions()[1]->text(), QStringLiteral("Lab"));
    m.newStatements();
    site->actions()[1]->trigger();
    EXPECT_EQ(m.newStatements(), QStringList{QStringLiteral("Connect()")});
    EXPECT_EQ(m.log.arguments.last().value(1), QStringLiteral("<Tool>"));
}

TEST(HelpMenus, AboutShowsTheVersionAndWhoMadeIt) {
    HelpMenus m;
    m.form->findChild<QAction*>(QStringLiteral("HelpAboutMenuButton"))->trigger();
    auto* about = m.form->findChild<AboutForm*>();
    ASSERT_NE(about, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(about));
    EXPECT_EQ(about->windowTitle(), QStringLiteral("Vessa - About"));
    EXPECT_EQ(about->VersionLabel().text(), QStringLiteral("Version 4.7.1"));
    EXPECT_EQ(about->NameList().item(0)->text(), QStringLiteral("The Vessa47 team"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&about->NameList())->text(QAccessible::Name),
              accessibleNameOf(QStringLiteral("NameList")));
    // Asked again, the one window comes forward.
    m.form->findChild<QAction*>(QStringLiteral("HelpAboutMenuButton"))->trigger();
    EXPECT_EQ(m.form->findChildren<AboutForm*>().size(), 1);
    QTest::keyClick(about, Qt::Key_Return);
    EXPECT_FALSE(about->isVisible());
}

} // namespace
} // namespace vessa
