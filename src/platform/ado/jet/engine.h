/// The embedded engine as a provider of databases: `Provider=Microsoft.Jet.OLEDB.4.0;Data Source=FILE`.
#pragma once

#include "platform/ado/engines.h"

namespace ado {

inline constexpr char jetProvider[] = "Microsoft.Jet.OLEDB.4.0";

/// Makes the engine known to this program copy.
void addJetEngine();

} // namespace ado
