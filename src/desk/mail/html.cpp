#include "desk/mail/html.h"

#include "desk/mail/charset.h"
#include "desk/mail/entities.h"

namespace desk {
namespace {

constexpr qsizetype longestEntity = 32;

bool isBlank(QChar c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\f'; }

bool isOneOf(QStringView name, std::initializer_list<QStringView> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool startsParagraph(QStringView name) {
    return isOneOf(
        name, {u"p", u"h1", u"h2", u"h3", u"h4", u"h5", u"h6", u"ul", u"ol", u"dl", u"table", u"blockquote", u"pre"});
}

bool startsLine(QStringView name) {
    return startsParagraph(name) ||
           isOneOf(name, {u"div", u"tr", u"li", u"dt", u"dd", u"hr", u"address", u"section", u"article", u"header",
                          u"footer", u"form", u"fieldset", u"caption", u"center", u"body", u"html", u"option"});
}

/// Collects the text of a page: what is a blank, a line or a paragraph apart is written only once more text follows.
class PlainText {
  public:
    void character(QChar c) {
        if (!m_preformatted && isBlank(c)) {
            m_blank = true;
            return;
        }
        if (c == u'\r')
            return;
        if (c == u'\n') {
            m_breaks += 1;
            return;
        }
        flush();
        m_text += c == QChar::Nbsp ? QChar(u' ') : c;
    }

    void text(QStringView view) {
        for (const QChar c : view)
            character(c);
    }

    void lineBreak() {
        m_breaks += 1;
        m_blank = false;
    }

    void apart(int breaks) {
        m_apart = std::max(m_apart, breaks);
        m_blank = false;
    }

    void nextCell() { m_cell = true; }

    void item() {
        apart(1);
        flush();
        m_text += u"* ";
    }

    void setPreformatted(bool preformatted) { m_preformatted = preformatted; }

    QString finish() {
        if (!m_text.isEmpty())
            m_text += u"\r\n";
        return std::move(m_text);
    }

  private:
    void flush() {
        // A <br> before a block ends the line that the block would have ended anyway.
        const int breaks = std::max(m_breaks, m_apart);
        if (!m_text.isEmpty()) {
            for (int i = 0; i < breaks; ++i)
                m_text += u"\r\n";
            if (breaks == 0 && m_cell)
                m_text += u'\t';
            else if (breaks == 0 && m_blank)
                m_text += u' ';
        }
        m_breaks = m_apart = 0;
        m_blank = m_cell = false;
    }

    QString m_text;
    int m_breaks = 0;
    int m_apart = 0;
    bool m_blank = false;
    bool m_cell = false;
    bool m_preformatted = false;
};

/// Walks over a page's markup. Every search that fails is not made again, so that the walk is linear.
class Page {
  public:
    explicit Page(QStringView html) : m_html(html) {}

    QString text() {
        while (m_at < m_html.size()) {
            const QChar c = m_html[m_at];
            if (c == u'<' && markup())
                continue;
            if (c == u'&')
                entity();
            else
                m_out.character(m_html[m_at++]);
        }
        return m_out.finish();
    }

  private:
    bool markup() {
        const QStringView rest = m_html.sliced(m_at + 1);
        if (rest.startsWith(u"!--")) {
            const qsizetype end = m_html.indexOf(u"-->", m_at + 4);
            m_at = end < 0 ? m_html.size() : end + 3;
            return true;
        }
        if (rest.isEmpty() || !(rest[0].isLetter() || QStringView(u"/!?").contains(rest[0])))
            return false;
        const qsizetype end = tagEnd();
        if (end < 0)
            return false;
        const bool closing = rest[0] == u'/';
        qsizetype nameEnd = m_at + (closing ? 2 : 1);
        const qsizetype nameStart = nameEnd;
        while (nameEnd < end && m_html[nameEnd].isLetterOrNumber())
            ++nameEnd;
        const QString name = m_html.sliced(nameStart, nameEnd - nameStart).toString().toLower();
        m_at = end + 1;
        tag(name, closing);
        return true;
    }

    /// Where the tag at the present position ends, -1 when it does not.
    qsizetype tagEnd() {
        QChar quote;
        for (qsizetype i = m_at + 1; i < m_html.size() && !m_noTagEnd; ++i) {
            const QChar c = m_html[i];
            if (!quote.isNull())
                quote = c == quote ? QChar() : quote;
            else if (c == u'>')
                return i;
            else if ((c == u'"' || c == u'\'') && i > 0 && (m_html[i - 1] == u'=' || isBlank(m_html[i - 1])))
                quote = c;
        }
        // An open quote that never closes: the tag is taken to end where it seems to.
        const qsizetype end = m_noTagEnd ? -1 : m_html.indexOf(u'>', m_at);
        m_noTagEnd = end < 0;
        return end;
    }

    void tag(const QString &name, bool closing) {
        if (isOneOf(name, {u"script", u"style", u"title", u"template", u"noscript"}) && !closing) {
            skipElement(name);
        } else if (name == u"br") {
            m_out.lineBreak();
        } else if (name == u"li" && !closing) {
            m_out.item();
        } else if (name == u"td" || name == u"th") {
            if (closing)
                m_out.nextCell();
        } else if (startsLine(name)) {
            m_out.apart(startsParagraph(name) ? 2 : 1);
            if (name == u"pre")
                m_out.setPreformatted(!closing);
        }
    }

    void skipElement(const QString &name) {
        const qsizetype end = m_html.indexOf(QString("</" + name), m_at, Qt::CaseInsensitive);
        m_at = end < 0 ? m_html.size() : end;
    }

    void entity() {
        const qsizetype start = m_at + 1;
        qsizetype end = start;
        while (end < m_html.size() && end - start < longestEntity &&
               (m_html[end].isLetterOrNumber() || m_html[end] == u'#'))
            ++end;
        const QString text = character(m_html.sliced(start, end - start));
        if (text.isEmpty()) {
            m_out.character(m_html[m_at++]);
            return;
        }
        m_out.text(text);
        m_at = end < m_html.size() && m_html[end] == u';' ? end + 1 : end;
    }

    static QString character(QStringView name) {
        if (!name.startsWith(u'#')) {
            const char16_t named = namedEntity(name);
            return named == 0 ? QString() : QString(QChar(named));
        }
        const bool hex = name.size() > 1 && name[1].toLower() == u'x';
        bool valid = false;
        const uint code = name.sliced(hex ? 2 : 1).toUInt(&valid, hex ? 16 : 10);
        if (!valid)
            return {};
        // Numbers in this range are meant as windows-1252, as in every browser.
        if (code >= 0x80 && code < 0xA0)
            return decodeText(QByteArray(1, static_cast<char>(code)), "windows-1252");
        if (code == 0 || code > QChar::LastValidCodePoint || (code >= 0xD800 && code < 0xE000))
            return QString(QChar(QChar::ReplacementCharacter));
        const char32_t point = code;
        return QString::fromUcs4(&point, 1);
    }

    QStringView m_html;
    qsizetype m_at = 0;
    bool m_noTagEnd = false;
    PlainText m_out;
};

} // namespace

QString textFromHtml(const QString &html) { return Page(html).text(); }

QString htmlFromText(const QString &text) {
    QString html;
    html.reserve(text.size() + text.size() / 8);
    bool afterBlank = true;
    for (const QChar c : text) {
        if (c == u'\r')
            continue;
        if (c == u'\n') {
            html += u"<br>\r\n";
            afterBlank = true;
        } else if (c == u' ' || c == u'\t') {
            html += c == u'\t' ? QStringView(u"&nbsp;&nbsp;&nbsp; ") : afterBlank ? QStringView(u"&nbsp;") : u" ";
            afterBlank = true;
        } else {
            afterBlank = false;
            if (c == u'<')
                html += u"&lt;";
            else if (c == u'>')
                html += u"&gt;";
            else if (c == u'&')
                html += u"&amp;";
            else if (c == u'"')
                html += u"&quot;";
            else
                html += c;
        }
    }
    return html;
}

QString bodyOfPage(const QString &html) {
    const qsizetype tag = html.indexOf(u"<body", 0, Qt::CaseInsensitive);
    const qsizetype start = tag < 0 ? -1 : html.indexOf(u'>', tag);
    if (start < 0)
        return html;
    const qsizetype end = html.indexOf(u"</body", start, Qt::CaseInsensitive);
    return html.mid(start + 1, end < 0 ? -1 : end - start - 1);
}

} // namespace desk
