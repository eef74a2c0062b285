#include "desk/store/itemcolumns.h"

#include "desk/store/entryid.h"
#include "desk/store/storedtext.h"

namespace desk {

namespace {

constexpr ItemColumn columns[] = {
    {Field::MessageClass, "message_class", &ItemRecord::messageClass, "message_class_key"},
    {Field::Subject, "subject", &ItemRecord::subject, "subject_key", true},
    {Field::Importance, "importance", &ItemRecord::importance, {}},
    {Field::Sensitivity, "sensitivity", &ItemRecord::sensitivity, {}},
    {Field::Unread, "unread", &ItemRecord::unread, {}},
    {Field::BillingInformation, "billing_information", &ItemRecord::billingInformation, "billing_information_key"},
    {Field::Categories, "categories", &ItemRecord::categories, {}},
    {Field::FlagStatus, "flag_status", &ItemRecord::flagStatus, {}},
    {Field::FlagRequest, "flag_request", &ItemRecord::flagRequest, {}},
    {Field::BodyFormat, "body_format", &ItemRecord::bodyFormat, {}},
    {Field::CreatedAt, "created_at", &ItemRecord::createdAt, {}},
    {Field::SenderName, "sender_name", &ItemRecord::senderName, "sender_name_key", true},
    {Field::SenderAddress, "sender_address", &ItemRecord::senderAddress, {}},
    {Field::SenderAddressType, "sender_address_type", &ItemRecord::senderAddressType, {}},
    {Field::SentOnBehalfOf, "sent_on_behalf_of", &ItemRecord::sentOnBehalfOf, {}},
    {Field::ReplyRecipientNames, "reply_recipient_names", &ItemRecord::replyRecipientNames, {}},
    {Field::To, "to_names", &ItemRecord::to, {}},
    {Field::Cc, "cc_names", &ItemRecord::cc, {}},
    {Field::Bcc, "bcc_names", &ItemRecord::bcc, {}},
    {Field::ReadReceiptRequested, "read_receipt_requested", &ItemRecord::readReceiptRequested, {}},
    {Field::Sent, "sent", &ItemRecord::sent, {}},
    {Field::SentAt, "sent_at", &ItemRecord::sentAt, {}},
    {Field::ReceivedAt, "received_at", &ItemRecord::receivedAt, {}, true},
    {Field::SaveSentFolder, "save_sent_folder", &ItemRecord::saveSentFolder, {}},
    {Field::MessageId, "message_id", &ItemRecord::messageId, {}},
    {Field::InReplyTo, "in_reply_to", &ItemRecord::inReplyTo, {}},
    {Field::References, "thread_references", &ItemRecord::references, {}},
    {Field::FullName, "full_name", &ItemRecord::fullName, "full_name_key"},
    {Field::Email1Address, "email1_address", &ItemRecord::email1Address, "email1_address_key"},
    {Field::BusinessTelephone, "business_telephone", &ItemRecord::businessTelephone, {}},
    {Field::Company, "company", &ItemRecord::company, {}},
    {Field::Department, "department", &ItemRecord::department, {}},
    {Field::StartAt, "start_at", &ItemRecord::startAt, {}},
    {Field::DueAt, "due_at", &ItemRecord::dueAt, {}},
    {Field::TaskStatus, "task_status", &ItemRecord::taskStatus, {}},
    {Field::PercentComplete, "percent_complete", &ItemRecord::percentComplete, {}},
    {Field::Owner, "owner", &ItemRecord::owner, {}},
    {Field::Location, "location", &ItemRecord::location, {}},
};

consteval bool inOrder() {
    for (std::size_t i = 0; i < std::size(columns); ++i)
        if (static_cast<std::size_t>(columns[i].field) != i)
            return false;
    return true;
}
static_assert(inOrder());

/// The columns that the store keeps by itself; they stand in front of the others.
constexpr std::string_view ownColumns = "i.id, i.folder, i.version, i.arrival, i.modified_at, i.attachment_count, ";
constexpr int ownColumnCount = 7;

} // namespace

std::span<const ItemColumn> itemColumns() { return columns; }

const ItemColumn &itemColumn(Field field) { return columns[static_cast<std::size_t>(field)]; }

Value fieldOf(const ItemRecord &record, const ItemColumn &column) {
    return std::visit([&record](auto member) { return Value(record.*member); }, column.member);
}

QVariant storedField(const ItemRecord &record, const ItemColumn &column) {
    return std::visit(
        [&record](auto member) -> QVariant {
            const auto &field = record.*member;
            using Held = std::decay_t<decltype(field)>;
            if constexpr (std::is_same_v<Held, QString>)
                return storedText(field);
            else if constexpr (std::is_same_v<Held, DateTime>)
                return field.days;
            else
                return static_cast<qint32>(field);
        },
        column.member);
}

QVariant storedKey(const ItemRecord &record, const ItemColumn &column) {
    if (!column.isIndexed())
        return storedField(record, column);
    return storedText(foldedKey(record.*std::get<QString ItemRecord::*>(column.member)));
}

const std::string &recordColumns() {
    static const std::string list = [] {
        std::string names(ownColumns);
        names.append(sizeColumn);
        for (const ItemColumn &column : columns)
            names.append(", i.").append(column.name);
        return names;
    }();
    return list;
}

ItemRecord recordFrom(const Row &row, const QByteArray &storeTag) {
    ItemRecord record;
    record.id = row.number(0);
    record.folder = row.number(1);
    record.version = row.number(2);
    record.arrival = row.number(3);
    record.modifiedAt = DateTime{row[4].toDouble()};
    record.attachmentCount = static_cast<qint32>(row.number(5));
    record.size = row.number(6);
    record.entryId = EntryId{.kind = EntryId::Kind::Item, .storeTag = storeTag, .number = record.id}.toText();
    int at = ownColumnCount;
    for (const ItemColumn &column : columns) {
        const QVariant stored = row[at++];
        std::visit(
            [&record, &stored](auto member) {
                auto &field = record.*member;
                using Held = std::decay_t<decltype(field)>;
                if constexpr (std::is_same_v<Held, QString>)
                    field = textOf(stored);
                else if constexpr (std::is_same_v<Held, DateTime>)
                    field = DateTime{stored.toDouble()};
                else
                    field = static_cast<Held>(stored.toInt());
            },
            column.member);
    }
    return record;
}

} // namespace desk
