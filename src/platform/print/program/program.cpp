// orvelle-print PAGE.html RESULT.pdf TITLE: lays out a page of HTML (UTF-8) on paper. Started by the programs that
// print; a page may come from a stranger, so it is laid out where nothing is lost when that goes wrong.

#include <QFile>
#include <QFont>
#include <QGuiApplication>
#include <QLocale>
#include <QPdfWriter>
#include <QTextDocument>
#include <QUrl>

#include <cstdio>

namespace {

/// A page that has all it needs in itself. Its links could otherwise name any file or device of the machine.
class Page : public QTextDocument {
  protected:
    QVariant loadResource(int type, const QUrl &name) override {
        const bool isInPage = name.scheme().compare(u"data", Qt::CaseInsensitive) == 0;
        return isInPage ? QTextDocument::loadResource(type, name) : QVariant();
    }
};

QPageSize::PageSizeId paper() {
    return QLocale().measurementSystem() == QLocale::ImperialUSSystem ? QPageSize::Letter : QPageSize::A4;
}

bool layOut(const QString &html, const QString &title, const QString &path) {
    constexpr int dotsPerInch = 300;
    constexpr qreal size = 10;
    QPdfWriter writer(path);
    writer.setTitle(title);
    writer.setResolution(dotsPerInch);
    writer.setPageSize(QPageSize(paper()));
    // The document leaves a margin of its own.
    writer.setPageMargins(QMarginsF());
    Page page;
    QFont font = page.defaultFont();
    font.setPointSizeF(size);
    page.setDefaultFont(font);
    // Headings stand off the tables below them.
    page.setDefaultStyleSheet(QStringLiteral("table { margin-top: 6px; margin-bottom: 6px; }"));
    page.setHtml(html);
    page.print(&writer);
    // The writer has no word on a disk that is full: a whole file ends with its mark.
    QFile result(path);
    return result.open(QIODevice::ReadOnly) && result.seek(std::max<qint64>(result.size() - 16, 0)) &&
           result.readAll().contains("%%EOF");
}

int fail(const char *what, const QString &path) {
    std::fprintf(stderr, "orvelle-print: %s %s\n", what, qPrintable(path));
    return 1;
}

} // namespace

int main(int argc, char **argv) {
    // Fonts are needed, a display is not.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: orvelle-print PAGE.html RESULT.pdf TITLE\n", stderr);
        return 2;
    }
    QFile source(arguments.at(1));
    if (!source.open(QIODevice::ReadOnly))
        return fail("can't read", arguments.at(1));
    if (!layOut(QString::fromUtf8(source.readAll()), arguments.at(3), arguments.at(2)))
        return fail("can't write", arguments.at(2));
    return 0;
}
