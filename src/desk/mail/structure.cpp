#include "desk/mail/structure.h"

#include "desk/mail/headertext.h"

namespace desk {
namespace {

constexpr int deepest = 100;
constexpr int mostParts = 2000;

QByteArray source(GMimeObject *object) {
    const GText text(g_mime_object_to_string(object, nullptr));
    return text ? QByteArray(text.get()) : QByteArray();
}

QByteArray typeOf(GMimeObject *object) {
    GMimeContentType *type = g_mime_object_get_content_type(object);
    const GText text(type ? g_mime_content_type_get_mime_type(type) : nullptr);
    const QByteArray name = text ? QByteArray(text.get()).toLower() : QByteArray("text/plain");
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
        const QByteArray kind = typeOf(GMIME_OBJECT(parent)).mid(qstrlen("multipart/"));
        const bool alternative = kind == "alternative";
        const auto textStart = static_cast<std::ptrdiff_t>(layout.text.size());
        const auto htmlStart = static_cast<std::ptrdiff_t>(layout.html.size());
        const int count = g_mime_multipart_get_count(parent);
        if (count == 0)
            emptyMultipart(parent, inAlternative, open);
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

    void emptyMultipart(GMimeMultipart *parent, bool inAlternative, Open open) {
        Leaf text = leafOf(GMIME_OBJECT(parent));
        text.bareText = g_mime_multipart_get_prologue(parent);
        text.type = "text/plain";
        if (text.bareText)
            leaf(text, true, "mixed", inAlternative, open);
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

QByteArray Leaf::content() const {
    if (bareText)
        return bareText;
    if (!GMIME_IS_PART(object))
        return source(object);
    GMimeDataWrapper *wrapper = g_mime_part_get_content(GMIME_PART(object));
    if (!wrapper)
        return {};
    const GRef<GMimeStream> stream(g_mime_stream_mem_new());
    g_mime_data_wrapper_write_to_stream(wrapper, stream.get());
    const GByteArray *bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream.get()));
    return {reinterpret_cast<const char *>(bytes->data), static_cast<qsizetype>(bytes->len)};
}

QByteArray Leaf::parameter(const char *parameterName) const {
    return g_mime_object_get_content_type_parameter(object, parameterName);
}

Layout layOut(GMimeObject *root) {
    Walk walk;
    walk.visit(root);
    return std::move(walk.layout);
}

} // namespace desk
