#include "orvelle/mail/attachments.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "orvelle/host/constants.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/mail/temporaryfolder.h"
#include "orvelle/session/safeutils.h"

namespace {
/// A source without attachments that is larger than this is attached whole.
constexpr qint32 largeMessage = 25000;

constexpr int mostTries = 200;
constexpr char wholeMessageName[] = "OriginalMessage.msg";

/// A name that came with a mail, made fit for the temporary folder: it can't lead out of it, and fits a file system
/// that takes 255 bytes, with room for a counter. The end stays, since it tells what the file is.
QString fncFileName(QString strName) {
    constexpr qsizetype mostBytes = 240;
    for (QChar &character : strName) {
        if (character == u'/' || character == u'\\' || character < u' ')
            character = u'_';
    }
    const qsizetype intDot = strName.lastIndexOf(QChar(u'.'));
    QString strEnd = intDot > 0 ? strName.mid(intDot) : QString();
    constexpr qsizetype longestEnd = 20;
    if (strEnd.size() > longestEnd)
        strEnd.clear();
    QString strStem = strName.chopped(strEnd.size());
    // A letter takes a byte at least; what is left is short, however long the sender's name was.
    strStem.truncate(mostBytes);
    while ((strStem + strEnd).toUtf8().size() > mostBytes)
        strStem.chop(strStem.back().isLowSurrogate() ? 2 : 1);
    return strStem + strEnd;
}

/// An attachment, and what it was when it was met.
struct SourceFile {
    SourceFile(const host::Attachments &attachments, qint32 index)
        : live(attachments.Item(index)), seen(host::snapshot(live, {"Type", "FileName", "DisplayName"})) {}

    host::Attachment live;
    host::Attachment seen;
};

/// One copying from a source to a target.
class AttachmentCopy {
  public:
    AttachmentCopy(const host::Item &source, const host::Item &target) : m_source(source), m_ticket(target) {}

    /// Gives the names of what could not be copied.
    QStringList run() {
        const auto about =
            m_source.askAll({{{"Attachments", {}}}, {{"Attachments", {}}, {"Count", {}}}, {{"Size", {}}}});
        if (about.at(0).failure())
            return {};
        const host::Attachments attachments = about.at(0).value();
        const qint32 count = toInt32(about.at(1).value());
        const bool blnLarge = count == 0 && toInt32(about.at(2).value()) > largeMessage;
        if (count == 0 && !blnLarge)
            return {};
        if (Attempt([&] { m_target = m_ticket.Attachments(); }))
            return {};
        subTrace("Finding temp folder");
        m_folder.emplace();
        m_path = m_folder->Path();
        subTrace("Looping attachements");
        for (qint32 i = 1; i <= count; ++i)
            one(SourceFile(attachments, i));
        if ((m_wholeWanted || blnLarge) && isMailOrPost() && fncSetupSafeUtils())
            attachWhole();
        return m_dropped;
    }

  private:
    void one(const SourceFile &attachment) {
        if (!m_folder->isValid()) {
            m_dropped << fncFileName(attachment.seen.DisplayName());
            return;
        }
        switch (attachment.seen.Type()) {
        case host::attachmenttype::byValue:
            copyFile(attachment);
            break;
        case host::attachmenttype::embeddedItem:
            if (Attempt([&] { copyEmbedded(attachment); }))
                m_wholeWanted = true;
            break;
        case host::attachmenttype::oleObject:
            m_wholeWanted = true;
            break;
        default:
            break;
        }
    }

    void copyFile(const SourceFile &attachment) {
        const QString strName = fncFileName(attachment.seen.FileName());
        QString strPath = m_path + strName;
        subTrace("Saving attachement as  " + strPath);
        bool blnSaved = fncSave(attachment.live, strPath);
        while (!blnSaved && m_counter <= mostTries) {
            strPath = m_path + QString::number(++m_counter) + strName;
            blnSaved = fncSave(attachment.live, strPath);
        }
        subTrace("Adding attachement to ticket " + strPath);
        if (blnSaved && fsoFileSystem->FileExists(strPath))
            attachAndDelete(strPath, attachment.seen.DisplayName());
        else
            m_dropped << strName;
    }

    void copyEmbedded(const SourceFile &attachment) {
        const QString strName = attachment.seen.DisplayName();
        QString strPath = m_path + fncFileName(strName + ".msg");
        fncSave(attachment.live, strPath);
        if (!fsoFileSystem->FileExists(strPath)) {
            strPath = m_path + QString::number(m_counter++) + ".msg";
            attachment.live.SaveAsFile(strPath);
        }
        attachAndDelete(strPath, strName);
    }

    void attachWhole() {
        if (!m_folder->isValid()) {
            m_dropped << wholeMessageName;
            return;
        }
        const QString strPath = m_path + wholeMessageName;
        fncSafeMailItem(m_source).SaveAs(strPath, host::filetype::message);
        attachAndDelete(strPath, m_source.Subject());
    }

    static bool fncSave(const host::Attachment &attachment, const QString &strPath) {
        return !Attempt([&] { attachment.SaveAsFile(strPath); });
    }

    void attachAndDelete(const QString &strPath, const QString &strDisplayName) {
        static_cast<void>(m_target.Add(strPath, host::attachmenttype::byValue, strDisplayName));
        subTrace("Deleting file from temp directory" + strPath);
        fsoFileSystem->DeleteFile(strPath, true);
    }

    [[nodiscard]] bool isMailOrPost() const {
        const QString strClass = m_source.MessageClass().toUpper();
        return strClass == "IPM.NOTE" || strClass == "IPM.POST";
    }

    host::Item m_source;
    host::Item m_ticket;
    /// The ticket's; Nothing until there is something to copy.
    host::Attachments m_target;
    std::optional<TemporaryFolder> m_folder;
    QString m_path;
    QStringList m_dropped;
    int m_counter = 0;
    bool m_wholeWanted = false;
};
} // namespace

QStringList subCopyAttachements(const host::Item &source, const host::Item &target) try {
    subTrace("Getting Attachements collection");
    if (source.isNothing() || target.isNothing())
        return {};
    return AttachmentCopy(source, target).run();
} catch (const Failure &failure) {
    subErrorHandler(failure, "subCopyAttachements");
}
