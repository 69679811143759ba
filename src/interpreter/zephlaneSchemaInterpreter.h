// SPDX-License-Identifier: MIT
//
// What the parsers share of the driver's module beyond its published functions.
#pragma once

#include "support/owners.h"

#include <zephlaneAPI/interpreter.h>

namespace zephlane {

// The route to the node in hand as parserRouteConcatRoute() writes it, however long it is. Null,
// after a report, when memory is out.
[[nodiscard]] CString RouteText(const ParseContext& context);

// Route keeping around a nested member or element. A failed push shows as a failed pop, and a
// failed pop is a failure of the parser, even when names that an inner failure left there are the
// cause.
inline void PushRoute(ParseContext* context, const char* name) {
  (void)parserRouteInsertEnd(context->routeMap, name);
  (void)parserRouteDisplayRoute(context->routeMap);
}

[[nodiscard]] inline bool PopRoute(ParseContext* context, const char* name) {
  return parserRouteDeleteEnd(&context->routeMap, name) == 0;
}

}  // namespace zephlane
