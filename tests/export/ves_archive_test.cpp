#include "export/ves_archive.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <zip.h>

#include <map>

// A world travels as an archive and comes back as it left; an archive from anyone else
// is refused whole when one entry would write where it must not, and then nothing is
// written at all.

namespace {

using vessa::ArchiveOutcome;

void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Every file under folder with its bytes, by path inside it.
std::map<QString, QByteArray> filesUnder(const QString& folder) {
    std::map<QString, QByteArray> files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files[QDir(folder).relativeFilePath(path)] = readFile(path);
    }
    return files;
}

struct RawEntry {
    QByteArray name;
    QByteArray bytes;
    mode_t type = S_IFREG;
};

const RawEntry kManifest{"vessa-archive.txt", "Vessa47 world archive\nformat 1\nversion 9\n"};

// An archive written entry by entry, names and kinds as given, as a hostile one would be.
void writeRawArchive(const QString& path, const std::vector<RawEntry>& entries) {
    int error = 0;
    zip_t* archive =
        zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    ASSERT_NE(archive, nullptr);
    for (const RawEntry& entry : entries) {
        zip_source_t* source = zip_source_buffer(archive, entry.bytes.constData(),
                                                 zip_uint64_t(entry.bytes.size()), 0);
        const zip_int64_t index = zip_file_add(archive, entry.name.constData(), source, 0);
        ASSERT_GE(index, 0) << entry.name.constData();
        zip_file_set_external_attributes(archive, zip_uint64_t(index), 0, ZIP_OPSYS_UNIX,
                                         zip_uint32_t(entry.type | 0644) << 16);
    }
    ASSERT_EQ(zip_close(archive), 0);
}

// Makes the archive claim another unpacked size for one entry, in both of the headers
// that carry it, as a bomb or a damaged file does.
void claimSize(const QString& path, const QByteArray& name, quint32 size) {
    QByteArray bytes = readFile(path);
    const auto patch = [&](const QByteArray& signature, int nameLengthAt, int nameAt, int sizeAt) {
        for (qsizetype at = bytes.indexOf(signature); at >= 0;
             at = bytes.indexOf(signature, at + 4)) {
            const quint16 length = quint8(bytes[at + nameLengthAt]) |
                                   quint16(quint8(bytes[at + nameLengthAt + 1]) << 8);
            if (bytes.mid(at + nameAt, length) != name)
                continue;
            for (int i = 0; i < 4; ++i)
                bytes[at + sizeAt + i] = char((size >> (8 * i)) & 0xff);
        }
    };
    patch(QByteArray("PK\x03\x04", 4), 26, 30, 22);
    patch(QByteArray("PK\x01\x02", 4), 28, 46, 24);
    writeFile(path, bytes);
}

class ArchiveTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(scratch_.isValid()); }
    QString at(const QString& inside) const { return scratch_.filePath(inside); }

    QTemporaryDir scratch_;
};

TEST_F(ArchiveTest, AWorldComesBackFromItsArchiveByteForByte) {
    const QString world = at(QStringLiteral("My World"));
    QByteArray binary;
    for (int i = 0; i < 300'000; ++i)
        binary.append(char((unsigned(i) * 7919u) >> 3));
    writeFile(world + QStringLiteral("/World_Scene.py"), "Camera.Move(Forward, 1)\r\n");
    writeFile(world + QStringLiteral("/world_script.tv"), "1\r\nMy First Animation\r\n");
    writeFile(world + QStringLiteral("/Models/Bunny Ears.mdl"), binary);
    writeFile(world + QStringLiteral("/Sounds/klänge.wav"), binary.left(999));
    writeFile(world + QStringLiteral("/empty.txt"), QByteArray());
    writeFile(world + QStringLiteral("/.hidden"), "kept");
    writeFile(world + QStringLiteral("/My World.ves"), "an earlier send, left out");
    const QString archive = world + QStringLiteral("/My World.ves");
    std::vector<qint64> told;
    const ArchiveOutcome packed =
        vessa::packWorldArchive(world, archive, QStringLiteral("0.1.0"), [&](qint64 done, qint64) {
            told.push_back(done);
            return true;
        });
    ASSERT_TRUE(packed.done()) << packed.message.toStdString();
    EXPECT_FALSE(told.empty());

    const QString back = at(QStringLiteral("TempWorld"));
    const ArchiveOutcome unpacked = vessa::unpackWorldArchive(archive, back);
    ASSERT_TRUE(unpacked.done()) << unpacked.message.toStdString();
    EXPECT_EQ(unpacked.packedVersion, QStringLiteral("0.1.0"));
    std::map<QString, QByteArray> expected = filesUnder(world);
    expected.erase(QStringLiteral("My World.ves"));
    EXPECT_EQ(filesUnder(back), expected);
}

TEST_F(ArchiveTest, HostileArchivesAreRefusedWholeAndWriteNothing) {
    const QByteArray zeros(4 << 20, '\0');
    const std::vector<std::pair<const char*, std::vector<RawEntry>>> hostile = {
        {"climbs out", {kManifest, {"ok.txt", "x"}, {"../../escaped.txt", "x"}}},
        {"climbs out in the middle", {kManifest, {"Models/../../../escaped.txt", "x"}}},
        {"absolute", {kManifest, {"/tmp/escaped.txt", "x"}}},
        {"drive letter", {kManifest, {"C:escaped.txt", "x"}}},
        {"back-slashes", {kManifest, {"..\\..\\escaped.txt", "x"}}},
        {"a link", {kManifest, {"ok.txt", "x"}, {"link", "/etc/passwd", S_IFLNK}}},
        {"a device", {kManifest, {"fifo", "", S_IFIFO}}},
        {"control character", {kManifest, {"bad\x07name.txt", "x"}}},
        {"line end in a name", {kManifest, {"bad\nname.txt", "x"}}},
        {"case twins", {kManifest, {"World_Scene.py", "a"}, {"world_scene.PY", "b"}}},
        {"folders as case twins", {kManifest, {"Models/a", "a"}, {"models/b", "b"}}},
        {"the same name twice", {kManifest, {"a.txt", "a"}, {"a.tx~", "b"}}},
        {"a file and a folder", {kManifest, {"a", "a"}, {"a/b", "b"}}},
        {"ratio", {kManifest, {"zeros.bin", zeros}}},
        {"no manifest", {{"World_Scene.py", "x"}}},
        {"someone else's manifest", {{"vessa-archive.txt", "hello"}, {"a", "b"}}},
        {"a newer format", {{"vessa-archive.txt", "Vessa47 world archive\nformat 2\n"}}},
    };
    // The fresh folder lies two levels down, so that "../../" would land in the scratch.
    const QString fresh = at(QStringLiteral("home/tmp/TempWorld"));
    for (const auto& [what, entries] : hostile) {
        const QString archive = at(QStringLiteral("hostile.ves"));
        writeRawArchive(archive, entries);
        // libzip won't write one name twice; the bytes of the file will.
        writeFile(archive, readFile(archive).replace("a.tx~", "a.txt"));
        const std::map<QString, QByteArray> before = filesUnder(scratch_.path());
        const ArchiveOutcome outcome = vessa::unpackWorldArchive(archive, fresh);
        EXPECT_EQ(outcome.kind, ArchiveOutcome::Kind::Refused) << what;
        EXPECT_TRUE(outcome.message.startsWith(archive + QStringLiteral(" can't be imported: ")))
            << what << ": " << outcome.message.toStdString();
        EXPECT_EQ(filesUnder(scratch_.path()), before) << what;
        EXPECT_FALSE(QFileInfo::exists(fresh)) << what;
    }
}

TEST_F(ArchiveTest, TooManyEntriesOrLyingSizesAreRefused) {
    const QString fresh = at(QStringLiteral("TempWorld"));
    const QString archive = at(QStringLiteral("a.ves"));

    std::vector<RawEntry> many{kManifest};
    for (int i = 0; i < 10'000; ++i)
        many.push_back({QByteArray::number(i), QByteArray()});
    writeRawArchive(archive, many);
    EXPECT_EQ(vessa::unpackWorldArchive(archive, fresh).kind, ArchiveOutcome::Kind::Refused);
    many.pop_back();
    writeRawArchive(archive, many);
    EXPECT_TRUE(vessa::unpackWorldArchive(archive, fresh).done()) << "10,000 entries in all";
    ASSERT_TRUE(QDir(fresh).removeRecursively());

    // An entry that claims 2 GiB: refused before a byte is written.
    writeRawArchive(archive, {kManifest, {"big.bin", "small"}});
    claimSize(archive, "big.bin", 0x80000000u);
    EXPECT_EQ(vessa::unpackWorldArchive(archive, fresh).kind, ArchiveOutcome::Kind::Refused);
    EXPECT_FALSE(QFileInfo::exists(fresh));

    // An entry that holds more than it claims, after others were written: what was written
    // goes again.
    writeRawArchive(archive, {kManifest, {"first.txt", "first"}, {"liar.bin", "twelve bytes"}});
    claimSize(archive, "liar.bin", 3);
    const ArchiveOutcome liar = vessa::unpackWorldArchive(archive, fresh);
    EXPECT_EQ(liar.kind, ArchiveOutcome::Kind::Refused);
    EXPECT_FALSE(QFileInfo::exists(fresh)) << liar.message.toStdString();

    // A folder that is not fresh is not written into.
    writeRawArchive(archive, {kManifest, {"a.txt", "a"}});
    writeFile(fresh + QStringLiteral("/mine.txt"), "mine");
    EXPECT_EQ(vessa::unpackWorldArchive(archive, fresh).kind, ArchiveOutcome::Kind::Refused);
    EXPECT_EQ(filesUnder(fresh).size(), 1u);
}

TEST_F(ArchiveTest, StoppingLeavesNothingHalfWritten) {
    const QString world = at(QStringLiteral("World"));
    QByteArray noise;
    for (int i = 0; i < 1'000'000; ++i)
        noise.append(char((unsigned(i) * 2654435761u) >> 24));
    writeFile(world + QStringLiteral("/a.bin"), noise);
    writeFile(world + QStringLiteral("/b.bin"), noise);
    const QString archive = at(QStringLiteral("World.ves"));
    ASSERT_TRUE(vessa::packWorldArchive(world, archive, QStringLiteral("1")).done());
    const QByteArray first = readFile(archive);

    // Packing stopped half way: the archive that was there stays, and nothing beside it.
    writeFile(world + QStringLiteral("/c.bin"), noise);
    const auto stopHalfWay = [](qint64 done, qint64 total) {
        return done < total / 2;
    };
    EXPECT_EQ(vessa::packWorldArchive(world, archive, QStringLiteral("1"), stopHalfWay).kind,
              ArchiveOutcome::Kind::Cancelled);
    EXPECT_EQ(readFile(archive), first);
    EXPECT_EQ(QDir(scratch_.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList{QStringLiteral("World.ves")});

    // Unpacking stopped half way: the fresh folder is gone again.
    const QString fresh = at(QStringLiteral("TempWorld"));
    EXPECT_EQ(vessa::unpackWorldArchive(archive, fresh, stopHalfWay).kind,
              ArchiveOutcome::Kind::Cancelled);
    EXPECT_FALSE(QFileInfo::exists(fresh));
}

} // namespace
