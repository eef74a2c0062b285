#include "desk/models/listcolumns.h"

namespace desk {

namespace {

QVariant momentOf(DateTime moment) { return moment.isZero() ? QVariant() : QVariant(moment.toQt()); }

constexpr ListColumn columns[] = {
    {"Importance", [](const ItemRecord &item) { return QVariant(item.importance); }},
    {"Attachments", [](const ItemRecord &item) { return QVariant(item.attachmentCount); }},
    {"From", [](const ItemRecord &item) { return QVariant(item.senderName); }, true, Field::SenderName},
    {"Subject", [](const ItemRecord &item) { return QVariant(item.subject); }, true, Field::Subject},
    {"Received", [](const ItemRecord &item) { return momentOf(item.receivedAt); }, true, Field::ReceivedAt},
    {"Size", [](const ItemRecord &item) { return QVariant(item.size); }},
};

} // namespace

std::span<const ListColumn> listColumns() { return columns; }

} // namespace desk
