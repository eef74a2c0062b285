// A random run of operations on two stores, against lists in memory that pose as the stores.

#include "storefixture.h"

#include "desk/store/transfer.h"
#include "platform/value/convert.h"

#include <random>

namespace desk {

namespace {

struct ModelItem {
    ItemRecord record;
    ItemParts parts;
};

/// The items of one folder in order of arrival.
using ModelFolder = QList<ModelItem>;

constexpr int storeCount = 2;
constexpr int folderCount = 3;

} // namespace

class ModelTest : public StoreTest, public ::testing::WithParamInterface<unsigned> {
  protected:
    std::mt19937 m_random{GetParam()};
    /// Two connections to each store, used in turn.
    std::unique_ptr<Store> m_stores[storeCount][2];
    FolderId m_folders[storeCount][folderCount] = {};
    ModelFolder m_model[storeCount][folderCount];

    void SetUp() override {
        for (int store = 0; store < storeCount; ++store) {
            reopen(store);
            for (int folder = 0; folder < folderCount; ++folder)
                m_folders[store][folder] = folderNamed(*m_stores[store][0], QString::number(folder));
        }
    }
    void reopen(int store) {
        for (auto &connection : m_stores[store])
            connection.reset();
        for (auto &connection : m_stores[store])
            connection = open(QStringLiteral("store%1").arg(store));
    }
    int below(qsizetype limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    Store &any(int store) { return *m_stores[store][below(2)]; }
    QString anyText() {
        const QStringList texts = oddTexts() + QStringList{"a", "A", "b"};
        return texts[below(texts.size())];
    }
    ItemParts anyParts() {
        ItemParts parts;
        if (below(2) == 0)
            parts.bodies = Bodies{.plain = anyText(), .html = anyText()};
        if (below(2) == 0) {
            parts.properties = QList<Property>();
            for (int i = 0; i < below(6); ++i)
                parts.properties->append({.name = QStringLiteral("P%1").arg(i), .value = anyText()});
        }
        if (below(3) == 0) {
            parts.attachments = QList<AttachmentRecord>();
            for (int i = 0; i < below(4); ++i)
                parts.attachments->append({.displayName = anyText(), .data = QByteArray(below(9000), 'd')});
        }
        if (below(4) == 0)
            parts.original = QByteArray(below(9000), 'o');
        return parts;
    }
    static ItemParts filled(const ItemParts &parts) {
        return {.bodies = parts.bodies.value_or(Bodies()),
                .properties = parts.properties.value_or(QList<Property>()),
                .attachments = parts.attachments.value_or(QList<AttachmentRecord>()),
                .original = parts.original.value_or(QByteArray())};
    }

    void insert(int store, int folder) {
        ItemRecord fields = withSubject(anyText());
        fields.to = anyText();
        fields.unread = below(2) == 0;
        const ItemParts parts = anyParts();
        const ItemRecord stored = any(store).insert(m_folders[store][folder], fields, parts);
        m_model[store][folder].append({.record = stored, .parts = filled(parts)});
    }
    void save(int store, ModelItem &item) {
        item.record.subject = anyText();
        item.record.unread = !item.record.unread;
        const ItemParts parts = anyParts();
        item.record = any(store).save(item.record, parts);
        if (parts.bodies)
            item.parts.bodies = parts.bodies;
        if (parts.properties)
            replaceProperties(*item.parts.properties, *parts.properties);
        if (parts.attachments)
            item.parts.attachments = parts.attachments;
        if (parts.original)
            item.parts.original = parts.original;
    }
    /// Properties keep the order in which their names first came.
    static void replaceProperties(QList<Property> &standing, const QList<Property> &given) {
        QList<Property> result;
        const auto named = [](const QList<Property> &list, const QString &name) {
            return std::ranges::find(list, name, &Property::name);
        };
        for (const Property &property : std::as_const(standing))
            if (const auto kept = named(given, property.name); kept != given.end())
                result.append(*kept);
        for (const Property &property : given)
            if (named(standing, property.name) == standing.end())
                result.append(property);
        standing = result;
    }
    void copy(int store, int folder, int at) {
        ModelItem copied = m_model[store][folder][at];
        copied.record = any(store).copy(copied.record.id);
        ASSERT_NE(copied.record.entryId, m_model[store][folder][at].record.entryId);
        m_model[store][folder].append(copied);
    }
    void move(int store, int folder, int at) {
        ModelItem moved = m_model[store][folder].takeAt(at);
        const int to = below(folderCount);
        const int toStore = below(3) == 0 ? 1 - store : store;
        const FolderId target = m_folders[toStore][to];
        moved.record = toStore == store ? any(store).move(moved.record, target)
                                        : moveBetween(any(store), moved.record, any(toStore), target);
        m_model[toStore][to].append(moved);
    }
    void remove(int store, int folder, int at) { any(store).remove(m_model[store][folder].takeAt(at).record); }

    void step() {
        const int store = below(storeCount);
        const int folder = below(folderCount);
        ModelFolder &items = m_model[store][folder];
        const int what = below(100);
        if (items.isEmpty() || what < 30)
            return insert(store, folder);
        const int at = below(items.size());
        if (what < 60)
            save(store, items[at]);
        else if (what < 65)
            copy(store, folder, at);
        else if (what < 85)
            move(store, folder, at);
        else if (what < 99)
            remove(store, folder, at);
        else
            reopen(store);
    }

    void checkPosition() {
        const int store = below(storeCount);
        const int folder = below(folderCount);
        const ModelFolder &items = m_model[store][folder];
        const auto unread = std::ranges::count_if(items, [](const ModelItem &item) { return item.record.unread; });
        const FolderCounts counts{.items = items.size(), .unread = unread};
        ASSERT_EQ(any(store).counts(m_folders[store][folder]), counts);
        if (!items.isEmpty()) {
            const int at = below(items.size());
            ASSERT_EQ(any(store).nth(m_folders[store][folder], at + 1), items[at].record);
        }
    }
    void checkSearch() {
        const int store = below(storeCount);
        const int folder = below(folderCount);
        const QString text = anyText();
        const QString property = QStringLiteral("P%1").arg(below(6));
        const bool isBySubject = below(2) == 0;
        const QList<Condition> conditions{isBySubject ? Condition{Field::Subject, text} : Condition{property, text}};
        const auto expected = std::ranges::find_if(m_model[store][folder], [&](const ModelItem &item) {
            const auto held = std::ranges::find(*item.parts.properties, property, &Property::name);
            const QString said = isBySubject                            ? item.record.subject
                                 : held != item.parts.properties->end() ? toText(held->value)
                                                                        : QString();
            return said.compare(text, Qt::CaseInsensitive) == 0;
        });
        const auto found = any(store).find(m_folders[store][folder], conditions);
        ASSERT_EQ(found.has_value(), expected != m_model[store][folder].end());
        if (found) {
            ASSERT_EQ(*found, expected->record);
        }
    }
    void checkAll() {
        for (int store = 0; store < storeCount; ++store)
            for (int folder = 0; folder < folderCount; ++folder) {
                const ModelFolder &items = m_model[store][folder];
                const QList<ItemRecord> stored = any(store).itemsArrivedAfter(m_folders[store][folder], 0, 100000);
                ASSERT_EQ(stored.size(), items.size());
                for (qsizetype i = 0; i < items.size(); ++i) {
                    ASSERT_EQ(stored[i], items[i].record);
                    ASSERT_TRUE(partsOf(any(store), stored[i].id) == items[i].parts) << i;
                }
            }
    }
};

TEST_P(ModelTest, StoresHoldWhatTheListsHold) {
    for (int i = 0; i < 600; ++i) {
        SCOPED_TRACE(i);
        ASSERT_NO_THROW(step());
        ASSERT_NO_FATAL_FAILURE(checkPosition());
        ASSERT_NO_FATAL_FAILURE(checkSearch());
        if (i % 100 == 99) {
            ASSERT_NO_FATAL_FAILURE(checkAll());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ModelTest, ::testing::Values(1U, 2U, 3U, 4U));

} // namespace desk
