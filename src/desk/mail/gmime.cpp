#include "desk/mail/gmime.h"

namespace desk {
namespace {

struct Library {
    Library() {
        g_mime_init();
        for (const char *subtype : {"rfc822", "rfc2822", "global", "news", "partial", "external-body"})
            g_mime_object_register_type("message", subtype, GMIME_TYPE_PART);
    }
};

} // namespace

void startGMime() { static const Library library; }

ParserOptions tolerantOptions() {
    startGMime();
    ParserOptions options(g_mime_parser_options_new());
    g_mime_parser_options_set_address_compliance_mode(options.get(), GMIME_RFC_COMPLIANCE_LOOSE);
    g_mime_parser_options_set_parameter_compliance_mode(options.get(), GMIME_RFC_COMPLIANCE_LOOSE);
    g_mime_parser_options_set_rfc2047_compliance_mode(options.get(), GMIME_RFC_COMPLIANCE_LOOSE);
    g_mime_parser_options_set_allow_addresses_without_domain(options.get(), TRUE);
    static const char *charsets[] = {"utf-8", "windows-1252", "iso-8859-1", nullptr};
    g_mime_parser_options_set_fallback_charsets(options.get(), charsets);
    return options;
}

} // namespace desk
