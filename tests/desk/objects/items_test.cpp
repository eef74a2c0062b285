// Items of a folder: made, saved, found, moved and deleted by clients that know nothing of each other.

#include "deskfixture.h"

namespace {

using ItemsTest = DeskTest;

TEST_F(ItemsTest, TheClassDecidesTheKind) {
    const struct {
        Value type;
        QString kind, messageClass;
    } cases[] = {{"IPM.Note", "MailItem", "IPM.Note"},
                 {"ipm.post.Any.Form.8", "PostItem", "ipm.post.Any.Form.8"},
                 {"IPM.Contact", "ContactItem", "IPM.Contact"},
                 {"IPM.Appointment", "AppointmentItem", "IPM.Appointment"},
                 {"IPM.Task", "TaskItem", "IPM.Task"},
                 {"REPORT.IPM.Note.NDR", "MailItem", "REPORT.IPM.Note.NDR"},
                 {6, "PostItem", "IPM.Post"},
                 {Value::Missing{}, "MailItem", "IPM.Note"}};
    for (const auto &each : cases) {
        const Handle item = folder(6).of("Items").of("Add", {each.type});
        EXPECT_EQ(item.typeName(), each.kind);
        EXPECT_EQ(item.text("MessageClass"), each.messageClass);
    }
    EXPECT_EQ(application().of("CreateItem", {3}).of("Parent").text("Name"), "Tasks");
}

TEST_F(ItemsTest, WhatIsSavedComesBack) {
    const Handle item = newItem(folder(6), "IPM.Note", "Printer");
    const std::pair<const char *, Value> values[] = {{"Importance", 2},
                                                     {"Sensitivity", 1},
                                                     {"UnRead", true},
                                                     {"BillingInformation", "17"},
                                                     {"Categories", "Red"},
                                                     {"To", "bo@example.org"},
                                                     {"SentOnBehalfOfName", "Desk"},
                                                     {"ReplyRecipientNames", "desk@example.org"},
                                                     {"ReadReceiptRequested", true},
                                                     {"FlagStatus", 2},
                                                     {"FlagRequest", "Ticket"}};
    for (const auto &[member, value] : values)
        item.put(member, value);
    EXPECT_FALSE(toBool(item.get("Saved")));
    item.call("Save");
    EXPECT_TRUE(toBool(item.get("Saved")));
    reopen();
    const Handle again = folder(6).of("Items").of("Item", {"Printer"});
    for (const auto &[member, value] : values)
        EXPECT_EQ(again.text(member), toText(value)) << member;
}

TEST_F(ItemsTest, TheBodiesFollowEachOther) {
    const Handle item = newItem(folder(6), "IPM.Note");
    item.put("Body", "plain & simple");
    EXPECT_EQ(item.number("BodyFormat"), 1);
    // A plain text shows as a page that says the same.
    EXPECT_EQ(item.text("HTMLBody"), "<html><body>plain &amp; simple</body></html>");
    item.put("HTMLBody", "<html><body><p>one</p><p>two</p></body></html>");
    EXPECT_EQ(item.number("BodyFormat"), 2);
    EXPECT_TRUE(item.text("Body").contains("one"));
    item.put("BodyFormat", 3);
    item.put("BodyFormat", 2);
    EXPECT_TRUE(item.text("HTMLBody").contains("<p>two</p>"));
    item.put("Body", "a < b");
    EXPECT_TRUE(item.text("HTMLBody").contains("a &lt; b")) << item.text("HTMLBody").toStdString();
    item.put("BodyFormat", 1);
    EXPECT_EQ(item.text("HTMLBody"), "<html><body>a &lt; b</body></html>");
    item.call("Save");
    EXPECT_EQ(folder(6).of("Items").of("Item", {1}).text("Body"), "a < b");
    EXPECT_EQ(failureOf([&] { item.put("BodyFormat", 4); }), failures::invalidCall);
}

TEST_F(ItemsTest, TheLaterOfTwoSavesFails) {
    static_cast<void>(savedItem(folder(6), "IPM.Note", "Both"));
    const Handle one = folder(6).of("Items").of("Item", {1});
    const Handle other = folder(6).of("Items").of("Item", {1});
    one.put("BillingInformation", "Working...");
    one.call("Save");
    EXPECT_EQ(other.text("BillingInformation"), "") << "an opened item does not change under its user";
    other.put("BillingInformation", "Working...");
    EXPECT_EQ(failureOf([&] { other.call("Save"); }), failures::itemChanged);
    EXPECT_FALSE(toBool(other.get("Saved")));
    one.put("BillingInformation", "12");
    one.call("Save");
    other.call("Close", {1});
    EXPECT_EQ(other.text("BillingInformation"), "12") << "discarding reads the item anew";
}

TEST_F(ItemsTest, ASaveAfterADeletionFails) {
    static_cast<void>(savedItem(folder(6), "IPM.Note", "Gone"));
    const Handle one = folder(6).of("Items").of("Item", {1});
    const Handle other = folder(6).of("Items").of("Item", {1});
    one.call("Delete");
    other.put("Subject", "Changed");
    EXPECT_EQ(failureOf([&] { other.call("Save"); }), failures::itemGone);
    expectFailure([&] { static_cast<void>(one.get("Subject")); }, failures::itemGone, {"been moved or deleted."});
}

TEST_F(ItemsTest, DeletingTwiceIsForEver) {
    const Handle tickets = publicFolder("Helpdesk");
    for (const Handle &from : {folder(6), tickets}) {
        savedItem(from, "IPM.Post", "Throw away").call("Delete");
        EXPECT_EQ(from.of("Items").number("Count"), 0);
        EXPECT_EQ(subjects(folder(3)), QStringList{"Throw away"});
        folder(3).of("Items").call("Remove", {1});
        EXPECT_EQ(folder(3).of("Items").number("Count"), 0);
    }
}

TEST_F(ItemsTest, AMoveTakesEverythingAlong) {
    const Handle tickets = publicFolder("Helpdesk");
    for (const Handle &target : {folder(16), tickets}) {
        const Handle item = savedItem(folder(6), "IPM.Note", "Travels");
        item.of("UserProperties").of("Add", {"Number", 3}).put("Value", 4.5);
        item.of("Attachments").call("Add", {written("a.txt", "attached")});
        item.put("Body", "text");
        const Handle moved = item.of("Move", {target});
        EXPECT_EQ(folder(6).of("Items").number("Count"), 0);
        EXPECT_TRUE(moved.of("Parent") == target);
        const Handle again = target.of("Items").of("Item", {"Travels"});
        EXPECT_EQ(again.text("EntryID"), moved.text("EntryID"));
        EXPECT_EQ(toDouble(again.of("UserProperties", {"Number"}).get("Value")), 4.5);
        again.of("Attachments").of("Item", {1}).call("SaveAsFile", {file("out.txt")});
        EXPECT_EQ(contentOf(file("out.txt")), "attached");
        EXPECT_EQ(again.text("Body"), "text");
        EXPECT_TRUE(session().of("GetItemFromID", {moved.text("EntryID"), target.text("StoreID")}).text("Subject") ==
                    "Travels");
        moved.put("Subject", "Arrived");
        moved.call("Save");
        EXPECT_EQ(subjects(target), QStringList{"Arrived"});
    }
}

TEST_F(ItemsTest, ACopyStandsBesideItsItem) {
    const Handle item = savedItem(folder(6), "IPM.Note", "Twice");
    item.of("Attachments").call("Add", {written("a.txt", "attached")});
    const Handle unsavedCopy = item.of("Copy");
    EXPECT_EQ(unsavedCopy.of("Attachments").number("Count"), 1);
    EXPECT_TRUE(unsavedCopy.of("Parent") == folder(6));
    EXPECT_NE(unsavedCopy.text("EntryID"), item.text("EntryID"));
    item.call("Save");
    item.of("Copy").call("Move", {folder(16)});
    EXPECT_EQ(subjects(folder(6)), (QStringList{"Twice", "Twice"}));
    EXPECT_EQ(subjects(folder(16)), QStringList{"Twice"});
}

TEST_F(ItemsTest, ItemsComeByPositionAndSubject) {
    for (const char *subject : {"First", "Second", "Third"})
        static_cast<void>(savedItem(folder(6), "IPM.Post", subject));
    const Handle items = folder(6).of("Items");
    EXPECT_EQ(items.of("GetFirst").text("Subject"), "First");
    EXPECT_EQ(items.of("GetNext").text("Subject"), "Second");
    EXPECT_EQ(items.of("GetLast").text("Subject"), "Third");
    EXPECT_EQ(items.of("Item", {2}).text("Subject"), "Second");
    EXPECT_EQ(items.of("Item", {"Third"}).text("Subject"), "Third");
    EXPECT_EQ(failureOf([&] { items.call("Item", {4}); }), failures::subscriptOutOfRange);
    EXPECT_EQ(failureOf([&] { items.call("Item", {0}); }), failures::subscriptOutOfRange);
    EXPECT_EQ(failureOf([&] { items.call("Item", {"Fourth"}); }), failures::notFound);
}

TEST_F(ItemsTest, CustomPropertiesKeepTheirTypes) {
    const Handle item = newItem(folder(6), "IPM.Post", "Typed");
    const Handle properties = item.of("UserProperties");
    const struct {
        QString name;
        int type;
        Value given, read;
    } cases[] = {{"Name", 1, 12, "12"},
                 {"Minutes", 3, "7", 7.0},
                 {"Due", 5, DateTime::fromDate(2026, 3, 1), DateTime::fromDate(2026, 3, 1)},
                 {"Done", 6, "True", true}};
    for (const auto &each : cases) {
        EXPECT_TRUE(Handle(properties.call("Find", {each.name})).isNothing());
        properties.of("Add", {each.name, each.type, false}).put("Value", each.given);
    }
    item.call("Save");
    const Handle again = folder(6).of("Items").of("Item", {1}).of("UserProperties");
    for (const auto &each : cases) {
        EXPECT_EQ(again.of("Item", {each.name.toUpper()}).get("Value"), each.read) << each.name.toStdString();
        EXPECT_EQ(again.of("Add", {each.name, each.type}).get("Value"), each.read) << "the existing one";
    }
    EXPECT_EQ(again.number("Count"), 4);
    EXPECT_EQ(failureOf([&] { again.call("Item", {"Missing"}); }), failures::objectNotSet);
    EXPECT_EQ(failureOf([&] { again.call("Add", {"Name", 3}); }), failures::invalidCall);
    EXPECT_EQ(failureOf([&] { again.of("Item", {"Minutes"}).put("Value", "many"); }), failures::typeMismatch);
    EXPECT_EQ(toText(again.of("Add", {"Fresh", 1}).get("Value")), "");
}

TEST_F(ItemsTest, AFormBringsItsFieldsToANewItem) {
    const Handle tickets = publicFolder("Forms");
    tickets.put("WebViewURL", "file:" + file("Page.htm"));
    written("Form.fdm", R"({"messageClass": "IPM.Post.Form", "fields": [
        {"name": "Number", "type": "text"}, {"name": "Open", "type": "yesno", "value": true},
        {"name": "Odd", "type": "colour"}]})");
    written("Broken.fdm", "{");
    const Handle properties = newItem(tickets, "IPM.Post.form").of("UserProperties");
    EXPECT_EQ(properties.number("Count"), 2);
    EXPECT_EQ(properties.of("Item", {"Number"}).get("Value"), Value(""));
    EXPECT_EQ(properties.of("Item", {"Open"}).get("Value"), Value(true));
    EXPECT_EQ(newItem(tickets, "IPM.Post").of("UserProperties").number("Count"), 0);
    EXPECT_EQ(newItem(folder(6), "IPM.Post.Form").of("UserProperties").number("Count"), 0);
}

TEST_F(ItemsTest, ContactsAndTasksHaveTheirOwnFields) {
    const Handle contact = application().of("CreateItem", {2});
    contact.put("FullName", "Bo Other");
    contact.put("CompanyName", "Example");
    contact.put("BusinessTelephoneNumber", "123");
    contact.put("Email1Address", "bo@example.org");
    contact.call("Save");
    const Handle found = folder(10).of("Items").of("Find", {"[Email1Address] ='BO@example.org'"});
    EXPECT_EQ(found.text("FullName"), "Bo Other");
    EXPECT_EQ(found.text("Subject"), "Bo Other");
    const Handle task = application().of("CreateItem", {3});
    task.put("DueDate", DateTime());
    task.put("Complete", true);
    EXPECT_EQ(task.number("PercentComplete"), 100);
    EXPECT_EQ(failureOf([&] { static_cast<void>(task.get("To")); }), failures::memberMissing);
}

} // namespace
