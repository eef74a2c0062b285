#include "desk/mail/structure.h"

#include "desk/mail/headertext.h"

namespace desk {
namespace {

constexpr int deepest = 100;
constexpr int mostParts = 2000;
/// Twice what the standard allows.
constexpr qsizetype longestBoundary = 140;
/// Each costs a copy of the content.
constexpr std::size_t mostRecovered = 4;

QByteArray source(GMimeObject *object) {
    const GText text(g_mime_object_to_string(object, nullptr));
    return text ? QByteArray(text.get()) : QByteArray();
}

QByteArray typeOf(GMimeObject *object) {
    GMimeContentType *type = g_mime_object_get_content_type(object);
    const GText text(type ? g_mime_content_type_get_mime_type(type) : nullptr);
    QByteArray name = text ? QByteArray(text.get()).toLower() : QByteArray("text/plain");
    // A type that is none ("text", an empty one) is read as text, like a missing one.
    const char *given = g_mime_object_get_header(object, "Content-Type");
    if (name == "application/octet-stream" && given && !QByteArrayView(given).contains('/'))
        return "text/plain";
    return name;
}

QString nameOf(GMimeObject *object) {
    const char *name = g_mime_object_get_content_disposition_parameter(object, "filename");
    if (!name || !*name)
        name = g_mime_object_get_content_type_parameter(object, "name");
    return name ? oneLine(QString::fromUtf8(name)) : QString();
}

Leaf leafOf(GMimeObject *object) {
    const char *disposition = g_mime_object_get_disposition(object);
    return {object, typeOf(object), QByteArray(disposition).toLower(), nameOf(object)};
}

/// What the stream gives, and no more than `most` bytes of it.
QByteArray bytesOf(GMimeStream *stream, qsizetype most) {
    constexpr qsizetype piece = qsizetype{64} * 1024;
    QByteArray bytes;
    while (bytes.size() < most && !g_mime_stream_eos(stream)) {
        const qsizetype size = bytes.size();
        // Grows by doubling: memory that is never written costs none.
        bytes.resize(size + std::min(piece, most - size));
        const auto read =
            g_mime_stream_read(stream, bytes.data() + size, static_cast<std::size_t>(bytes.size() - size));
        bytes.truncate(size + std::max<qsizetype>(read, 0));
        if (read < 0)
            break;
    }
    return bytes;
}

bool hasOwnDecoder(GMimeContentEncoding encoding) {
    return encoding == GMIME_CONTENT_ENCODING_BASE64 || encoding == GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE ||
           encoding == GMIME_CONTENT_ENCODING_UUENCODE;
}

QByteArray decodedBytesOf(GMimeStream *raw, GMimeContentEncoding encoding, qsizetype most) {
    const GRef<GMimeStream> stream(g_mime_stream_filter_new(raw));
    const GRef<GMimeFilter> filter(g_mime_filter_basic_new(encoding, FALSE));
    g_mime_stream_filter_add(GMIME_STREAM_FILTER(stream.get()), filter.get());
    return bytesOf(stream.get(), most);
}

/// Whether the first line holds only what base64 consists of. A content that is marked as base64 and is none would be
/// turned into noise; what stands behind real base64, such as a mailing list's footer, does no harm.
bool beginsAsBase64(GMimeStream *content) {
    std::array<char, 1024> front;
    g_mime_stream_reset(content);
    const auto length = g_mime_stream_read(content, front.data(), front.size());
    g_mime_stream_reset(content);
    QByteArrayView line = QByteArrayView(front.data(), std::max<qsizetype>(length, 0)).trimmed();
    if (const qsizetype end = line.indexOf('\n'); end >= 0)
        line = line.first(end);
    return std::all_of(line.begin(), line.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               QByteArrayView("+/= \t\r").contains(c);
    });
}

/// The walk over the tree. The two bodies can be closed for a while: inside an alternative, what follows a text in one
/// form does not belong to the other.
class Walk {
  public:
    Layout layout;

    void visit(GMimeObject *object) {
        if (GMIME_IS_MULTIPART(object))
            multipart(GMIME_MULTIPART(object), 0, false, {true, true});
        else
            leaf(leafOf(object), true, "mixed", false, {true, true});
    }

  private:
    struct Open {
        bool text, html;
    };

    void multipart(GMimeMultipart *parent, int depth, bool inAlternative, Open open) {
        const QByteArray kind = typeOf(GMIME_OBJECT(parent)).mid(static_cast<qsizetype>(qstrlen("multipart/")));
        const bool alternative = kind == "alternative";
        const auto textStart = static_cast<std::ptrdiff_t>(layout.text.size());
        const auto htmlStart = static_cast<std::ptrdiff_t>(layout.html.size());
        const int count = g_mime_multipart_get_count(parent);
        if (count == 0)
            emptyMultipart(parent, depth, inAlternative, open);
        for (int i = 0; i < count; ++i) {
            GMimeObject *child = g_mime_multipart_get_part(parent, i);
            if (m_leaves >= mostParts)
                layout.unread += source(child);
            else if (GMIME_IS_MULTIPART(child) && depth < deepest)
                multipart(GMIME_MULTIPART(child), depth + 1, inAlternative || alternative, open);
            else
                open = leaf(leafOf(child), i == 0, kind, inAlternative || alternative, open);
        }
        if (alternative && open.text && open.html)
            shareOnlyForm(textStart, htmlStart);
    }

    /// A multipart without parts: its boundary got lost, or what it holds is one text.
    void emptyMultipart(GMimeMultipart *parent, int depth, bool inAlternative, Open open) {
        Leaf text = leafOf(GMIME_OBJECT(parent));
        text.bareText = g_mime_multipart_get_prologue(parent);
        if (!text.bareText)
            return;
        if (GMimeObject *again = depth < deepest ? recover(text) : nullptr) {
            multipart(GMIME_MULTIPART(again), depth + 1, inAlternative, open);
            return;
        }
        text.type = "text/plain";
        leaf(text, true, "mixed", inAlternative, open);
    }

    /// Reads the parts with the boundary that the content itself shows. Nothing when it shows none.
    GMimeObject *recover(const Leaf &text) {
        const QByteArrayView content(text.bareText);
        const qsizetype dashes = content.startsWith("--") ? 0 : content.indexOf("\n--") + 1;
        if (!content.sliced(dashes).startsWith("--"))
            return nullptr;
        qsizetype end = content.indexOf('\n', dashes);
        end = end < 0 ? content.size() : end;
        const QByteArray boundary = content.sliced(dashes + 2, end - dashes - 2).trimmed().toByteArray();
        if (layout.recovered.size() >= mostRecovered || boundary.isEmpty() || boundary.size() > longestBoundary ||
            boundary.contains('"') || boundary.contains('\\'))
            return nullptr;
        Recovered again;
        again.bytes = std::make_unique<QByteArray>("Content-Type: " + text.type + "; boundary=\"" + boundary +
                                                   "\"\n\n" + content.toByteArray());
        again.parts = parseParts(*again.bytes, again.bytes->size());
        GMimeObject *root = again.parts.root.get();
        if (!root || !GMIME_IS_MULTIPART(root) || g_mime_multipart_get_count(GMIME_MULTIPART(root)) == 0)
            return nullptr;
        layout.recovered.push_back(std::move(again));
        return root;
    }

    Open leaf(const Leaf &part, bool first, const QByteArray &parentKind, bool inAlternative, Open open) {
        ++m_leaves;
        const bool body = part.disposition != "attachment" && part.isText() &&
                          (first || (parentKind != "related" && part.name.isEmpty()));
        if (!body) {
            layout.attachments.push_back(part);
            return open;
        }
        if (parentKind == "alternative") {
            (part.type == "text/html" ? layout.html : layout.text).push_back(part);
            return open;
        }
        if (inAlternative && part.type == "text/plain")
            open.html = false;
        if (inAlternative && part.type == "text/html")
            open.text = false;
        if (open.text)
            layout.text.push_back(part);
        if (open.html)
            layout.html.push_back(part);
        if (!open.text && !open.html)
            layout.attachments.push_back(part);
        return open;
    }

    /// An alternative that has only one form serves both bodies.
    void shareOnlyForm(std::ptrdiff_t textStart, std::ptrdiff_t htmlStart) {
        const bool noText = textStart == std::ssize(layout.text);
        const bool noHtml = htmlStart == std::ssize(layout.html);
        if (noText)
            layout.text.insert(layout.text.end(), layout.html.begin() + htmlStart, layout.html.end());
        else if (noHtml)
            layout.html.insert(layout.html.end(), layout.text.begin() + textStart, layout.text.end());
    }

    int m_leaves = 0;
};

} // namespace

QByteArray Leaf::content(qsizetype most) const {
    if (bareText)
        return QByteArrayView(bareText).first(std::min(most, static_cast<qsizetype>(qstrlen(bareText)))).toByteArray();
    if (!GMIME_IS_PART(object))
        return source(object).left(most);
    GMimeDataWrapper *wrapper = g_mime_part_get_content(GMIME_PART(object));
    if (!wrapper)
        return {};
    const GMimeContentEncoding encoding = g_mime_data_wrapper_get_encoding(wrapper);
    GMimeStream *raw = g_mime_data_wrapper_get_stream(wrapper);
    const bool isMarkedWrongly = encoding == GMIME_CONTENT_ENCODING_BASE64 && !beginsAsBase64(raw);
    g_mime_stream_reset(raw);
    QByteArray bytes =
        hasOwnDecoder(encoding) && !isMarkedWrongly ? decodedBytesOf(raw, encoding, most) : bytesOf(raw, most);
    g_mime_stream_reset(raw);
    return bytes;
}

QByteArray Leaf::parameter(const char *parameterName) const {
    return g_mime_object_get_content_type_parameter(object, parameterName);
}

Parts parseParts(const QByteArray &bytes, qsizetype length) {
    const ParserOptions options = tolerantOptions();
    Parts parts;
    parts.bytes = std::make_unique<BorrowedBytes>(bytes, length);
    const GRef<GMimeStream> stream(g_mime_stream_mem_new_with_byte_array(parts.bytes->get()));
    g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(stream.get()), FALSE);
    const GRef<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    parts.root = GRef<GMimeObject>(g_mime_parser_construct_part(parser.get(), options.get()));
    return parts;
}

Layout layOut(GMimeObject *root) {
    Walk walk;
    walk.visit(root);
    return std::move(walk.layout);
}

} // namespace desk
