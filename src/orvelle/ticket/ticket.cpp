#include "orvelle/ticket/ticket.h"

cTicket::cTicket() : WorkDescs(Ref<cWorkDescs>::make()) {}
