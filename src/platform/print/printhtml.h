/// Printing pages of HTML as a reader sees them.
#pragma once

#include <QString>

namespace print {

/// Prints a page on the person's default printer. Where no printer takes it, the page is kept as a PDF file, and a
/// message says where it lies; a page that can't be printed at all gets a message too. Never fails.
///
/// The page is laid out by the program `orvelle-print` beside this one, so that a page that comes from a stranger can
/// neither stop nor end this process, and a process without windows can print. Pictures and styles are taken from the
/// page alone; nothing is fetched.
///
/// \param title  names the print job, the file and the message.
void printHtml(const QString &html, const QString &title);

/// Where pages are kept that no printer took: the folder `printouts` of $ORVELLE_PROFILE, else the person's folder for
/// documents. A machine's path.
QString printoutFolder();

} // namespace print
