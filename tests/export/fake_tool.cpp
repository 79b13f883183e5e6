// A stand-in for the paint and sketch tools in the tests of their sessions. It says
// where it started and with what, then does what its standard input tells it, a line
// at a time:
//   say TEXT   puts TEXT on the clipboard, which is the file VESSA_TEST_CLIPBOARD names
//              (the tests' clipboard), and answers "said"
//   exit N     ends with exit code N
// It ends with 0 when its input ends.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    out << "started " << QDir::currentPath() << " " << app.arguments().mid(1).join(u' ') << "\n";
    out.flush();
    QTextStream in(stdin);
    while (!in.atEnd()) {
        const QString line = in.readLine();
        if (line.startsWith(QStringLiteral("say "))) {
            QFile clipboard(qEnvironmentVariable("VESSA_TEST_CLIPBOARD"));
            if (!clipboard.open(QIODevice::WriteOnly | QIODevice::Truncate))
                return 2;
            clipboard.write(line.mid(4).toUtf8());
            clipboard.close();
            out << "said\n";
            out.flush();
        } else if (line.startsWith(QStringLiteral("exit "))) {
            return line.mid(5).toInt();
        }
    }
    return 0;
}
