#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>
#include <gtest/gtest.h>

// The front end's folders stand in layers: a folder may include its own headers and
// those of lower layers, never those of a higher layer or of a folder beside it. A new
// folder must take its place here before it can be included at all. One subsystem reads
// the models of the one beside it: the event rows name the script's animations and
// follow its edits, and the text boxes search and complete its lines; its windows, the
// panels, stay out of reach. Beneath them all lies one folder of the engine's backend
// that holds no engine, only how an OpenSceneGraph viewer lives in a Qt widget: the
// front end's views draw as the camera view does.

namespace {

int layerOf(const QString& folder) {
    static const QHash<QString, int> layers = {
        {QStringLiteral("glwidget"), 0}, {QStringLiteral("base"), 0},
        {QStringLiteral("controls"), 1}, {QStringLiteral("gateway"), 2},
        {QStringLiteral("script"), 3},   {QStringLiteral("scene"), 3},
        {QStringLiteral("events"), 3},   {QStringLiteral("export"), 3},
        {QStringLiteral("text"), 3},     {QStringLiteral("world"), 4},
        {QStringLiteral("shell"), 5},    {QStringLiteral("commandline"), 5},
        {QStringLiteral("app"), 6},
    };
    return layers.value(folder, -1);
}

// Whether folder may include header of the subsystem beside it.
bool readsModelOfNeighbour(const QString& folder, const QString& header) {
    const bool readsScript = folder == QStringLiteral("events") || folder == QStringLiteral("text");
    return readsScript && header.startsWith(QStringLiteral("script/")) &&
           !header.endsWith(QStringLiteral("_panel.h"));
}

// "app/main.cpp: includes shell/program.h" for every include that breaks the order.
QStringList includesAgainstTheLayers(const QString& sourceRoot) {
    static const QRegularExpression include(
        QStringLiteral(R"re(^\s*#\s*include\s*"(([A-Za-z0-9_]+)/[^"]+)")re"));
    QStringList broken;
    QDirIterator files(sourceRoot, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString file = QDir(sourceRoot).relativeFilePath(path);
        const QString folder = file.section(QLatin1Char('/'), 0, 0);
        QFile source(path);
        if (!source.open(QIODevice::ReadOnly | QIODevice::Text)) {
            broken << file + QStringLiteral(": can't be read");
            continue;
        }
        QTextStream lines(&source);
        while (!lines.atEnd()) {
            const QString line = lines.readLine();
            const QRegularExpressionMatch match = include.match(line);
            if (!match.hasMatch())
                continue;
            const QString target = match.captured(2);
            const bool allowed =
                target == folder || readsModelOfNeighbour(folder, match.captured(1)) ||
                (layerOf(folder) >= 0 && layerOf(target) >= 0 && layerOf(target) < layerOf(folder));
            if (!allowed)
                broken << file + QStringLiteral(": ") + line.trimmed();
        }
    }
    return broken;
}

} // namespace

TEST(Layers, NoFolderOfTheFrontEndIncludesAHigherOrNeighbouringOne) {
    const QString sourceRoot = QStringLiteral(VESSA_SOURCE_DIR) + QStringLiteral("/src");
    ASSERT_TRUE(QDir(sourceRoot + QStringLiteral("/world")).exists()) << sourceRoot.toStdString();
    const QStringList broken = includesAgainstTheLayers(sourceRoot);
    EXPECT_TRUE(broken.isEmpty()) << broken.join(QLatin1Char('\n')).toStdString();
}

TEST(Layers, AnUpwardOrSidewaysIncludeIsFound) {
    // A copy of a small tree in which scene reaches up to the world and across to the
    // script, the events reach the script's panel and the script the events, and an
    // unknown folder includes the base: each is one complaint. The events reading the
    // script's model is none.
    QTemporaryDir root;
    const auto write = [&](const QString& file, const QByteArray& text) {
        QDir(root.path()).mkpath(QFileInfo(file).path());
        QFile out(root.path() + QLatin1Char('/') + file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(text);
    };
    write(QStringLiteral("scene/a.cpp"), "#include \"scene/a.h\"\n#include \"world/b.h\"\n"
                                         "#include \"script/c.h\"\n  #  include \"base/d.h\"\n");
    write(QStringLiteral("shell/e.h"), "#include \"world/b.h\"\n#include <QString>\n");
    write(QStringLiteral("newpart/f.cpp"), "#include \"base/d.h\"\n");
    write(QStringLiteral("events/g.cpp"),
          "#include \"script/script_model.h\"\n#include \"script/script_panel.h\"\n");
    write(QStringLiteral("script/h.cpp"), "#include \"events/event_list.h\"\n");
    const QStringList broken = includesAgainstTheLayers(root.path());
    EXPECT_EQ(broken.size(), 5) << broken.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(
        broken.contains(QStringLiteral("events/g.cpp: #include \"script/script_panel.h\"")));
    EXPECT_TRUE(broken.contains(QStringLiteral("script/h.cpp: #include \"events/event_list.h\"")));
    EXPECT_TRUE(broken.contains(QStringLiteral("scene/a.cpp: #include \"world/b.h\"")));
    EXPECT_TRUE(broken.contains(QStringLiteral("scene/a.cpp: #include \"script/c.h\"")));
    EXPECT_TRUE(broken.contains(QStringLiteral("newpart/f.cpp: #include \"base/d.h\"")));
}
