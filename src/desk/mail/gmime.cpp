#include "desk/mail/gmime.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace desk {
namespace {

struct Library {
    Library() {
#ifdef __SANITIZE_ADDRESS__
        // The library forgets the entry of its own that another replaces: a few bytes, once.
        const __lsan::ScopedDisabler disabler;
#endif
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
