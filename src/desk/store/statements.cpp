#include "desk/store/statements.h"

namespace desk::sql {

namespace {

/// The fields' columns with the keys of the indexed ones, each handed to `each(name)`.
template <class Each>
void forEachWritten(Each each) {
    for (const ItemColumn &column : itemColumns()) {
        each(std::string(column.name));
        if (column.isIndexed())
            each(std::string(column.keyName));
    }
}

} // namespace

const std::string &standing() {
    static const std::string text = "SELECT i.folder, i.version, i.arrival, i.attachment_count, " +
                                    std::string(sizeColumn) + " FROM items AS i WHERE i.id = :id";
    return text;
}

const std::string &itemById() {
    static const std::string text =
        "SELECT " + recordColumns() + " FROM items AS i WHERE i.id = :id AND i.folder IS NOT NULL";
    return text;
}

const std::string &itemsAfter() {
    static const std::string text =
        "SELECT " + recordColumns() +
        " FROM items AS i WHERE i.folder = :folder AND i.arrival > :arrival ORDER BY i.arrival LIMIT :limit";
    return text;
}

const std::string &itemKeys() {
    static const std::string text = [] {
        std::string names;
        for (const ItemColumn &column : itemColumns())
            if (column.hasIndex())
                names.append(names.empty() ? "" : ", ").append(column.indexedName());
        return "SELECT " + names + " FROM items WHERE id = :id";
    }();
    return text;
}

const std::string &insertItem() {
    static const std::string text = [] {
        std::string names = "id, folder, version, arrival, modified_at, attachment_count, body_bytes, attachment_bytes,"
                            " original_bytes";
        std::string values = ":id, :folder, 1, :arrival, :modified_at, :attachment_count, :body_bytes,"
                             " :attachment_bytes, :original_bytes";
        forEachWritten([&](const std::string &name) {
            names.append(", ").append(name);
            values.append(", :").append(name);
        });
        return "INSERT INTO items (" + names + ") VALUES (" + values + ")";
    }();
    return text;
}

std::string updateItem(quint32 changedKeys) {
    std::string text = "UPDATE items SET version = version + 1, modified_at = :modified_at";
    quint32 bit = 1;
    for (const ItemColumn &column : itemColumns()) {
        const auto set = [&text](const std::string &name) {
            text.append(", ").append(name).append(" = :").append(name);
        };
        // The text is written even where its key is the same: the case of a letter may have changed.
        if (column.isIndexed() || !column.hasIndex())
            set(std::string(column.name));
        if (!column.hasIndex())
            continue;
        if ((changedKeys & bit) != 0)
            set(std::string(column.indexedName()));
        bit <<= 1;
    }
    return text + " WHERE id = :id";
}

std::string countedFolders(bool keepsCounts, const std::string &condition) {
    const std::string kept = keepsCounts ? "f.item_count, f.unread_count"
                                         : "(SELECT count(*) FROM items WHERE folder = f.id),"
                                           " (SELECT count(*) FROM items WHERE folder = f.id AND unread <> 0)";
    return "SELECT f.id, f.parent, f.name, f.item_type, f.home_page, f.home_page_on, f.special, " + kept +
           ", EXISTS (SELECT 1 FROM folders AS c WHERE c.parent = f.id) FROM folders AS f WHERE " + condition +
           " ORDER BY f.id";
}

const std::string &copyItem() {
    static const std::string text = [] {
        std::string names = "modified_at, attachment_count, body_bytes, attachment_bytes, original_bytes";
        forEachWritten([&names](const std::string &name) { names.append(", ").append(name); });
        return "INSERT INTO items (id, folder, version, arrival, " + names + ") SELECT :copy, folder, 1, :arrival, " +
               names + " FROM items WHERE id = :item";
    }();
    return text;
}

} // namespace desk::sql
