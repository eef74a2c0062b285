#include "desk/content/fields.h"

namespace desk {
namespace {

template <auto member>
Value read(const ItemRecord &record) {
    return record.*member;
}

template <auto member>
Value readNumber(const ItemRecord &record) {
    return static_cast<double>(record.*member);
}

QString key(const QString &name) { return name.toCaseFolded().remove(u' '); }

} // namespace

const std::vector<StandardField> &standardFields() {
    using R = ItemRecord;
    static const std::vector<StandardField> fields{
        {"EntryID", read<&R::entryId>, {}},
        {"MessageClass", read<&R::messageClass>, Field::MessageClass},
        {"Subject", read<&R::subject>, Field::Subject},
        {"SenderName", read<&R::senderName>, Field::SenderName},
        {"SenderEmailAddress", read<&R::senderAddress>, Field::SenderAddress},
        {"SenderEmailType", read<&R::senderAddressType>, Field::SenderAddressType},
        {"SentOnBehalfOfName", read<&R::sentOnBehalfOf>, Field::SentOnBehalfOf},
        {"ReplyRecipientNames", read<&R::replyRecipientNames>, Field::ReplyRecipientNames},
        {"To", read<&R::to>, Field::To},
        {"CC", read<&R::cc>, Field::Cc},
        {"BCC", read<&R::bcc>, Field::Bcc},
        {"SentOn", read<&R::sentAt>, Field::SentAt},
        {"ReceivedTime", read<&R::receivedAt>, Field::ReceivedAt},
        {"CreationTime", read<&R::createdAt>, Field::CreatedAt},
        {"LastModificationTime", read<&R::modifiedAt>, {}},
        {"Importance", read<&R::importance>, Field::Importance},
        {"Sensitivity", read<&R::sensitivity>, Field::Sensitivity},
        {"UnRead", read<&R::unread>, Field::Unread},
        {"Sent", read<&R::sent>, Field::Sent},
        {"ReadReceiptRequested", read<&R::readReceiptRequested>, Field::ReadReceiptRequested},
        {"BillingInformation", read<&R::billingInformation>, Field::BillingInformation},
        {"Categories", read<&R::categories>, Field::Categories},
        {"FlagStatus", read<&R::flagStatus>, Field::FlagStatus},
        {"FlagRequest", read<&R::flagRequest>, Field::FlagRequest},
        {"BodyFormat", read<&R::bodyFormat>, Field::BodyFormat},
        {"Size", readNumber<&R::size>, {}},
        {"Attachments", readNumber<&R::attachmentCount>, {}},
        {"MessageID", read<&R::messageId>, Field::MessageId},
        {"InReplyTo", read<&R::inReplyTo>, Field::InReplyTo},
        {"References", read<&R::references>, Field::References},
        {"FullName", read<&R::fullName>, Field::FullName},
        {"Email1Address", read<&R::email1Address>, Field::Email1Address},
        {"BusinessTelephoneNumber", read<&R::businessTelephone>, Field::BusinessTelephone},
        {"CompanyName", read<&R::company>, Field::Company},
        {"Department", read<&R::department>, Field::Department},
        {"Start", read<&R::startAt>, Field::StartAt},
        {"DueDate", read<&R::dueAt>, Field::DueAt},
        {"Status", read<&R::taskStatus>, Field::TaskStatus},
        {"PercentComplete", read<&R::percentComplete>, Field::PercentComplete},
        {"Owner", read<&R::owner>, Field::Owner},
        {"Location", read<&R::location>, Field::Location},
    };
    return fields;
}

const StandardField *standardField(const QString &name) {
    static const auto byName = [] {
        QHash<QString, const StandardField *> index;
        for (const StandardField &field : standardFields())
            index.insert(key(QString::fromLatin1(field.name)), &field);
        return index;
    }();
    return byName.value(key(name));
}

} // namespace desk
