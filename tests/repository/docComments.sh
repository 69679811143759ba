#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# docComments.sh INCLUDE_DIR: each exported declaration of the public headers has a doc comment right
# before it, and a function's has @param, @return and @note, in this order, as far as they apply.
set -euo pipefail

find "$1" -name '*.h' | LC_ALL=C sort | xargs -d '\n' awk '
  function complain(what) {
    printf "%s:%d: %s: %s\n", FILENAME, start, what, declaration
    bad = 1
  }
  # The position of a tag; a function that cannot have one counts as having it in its place.
  function position(tag, needed, instead,    at) {
    at = index(comment, tag)
    if (!needed && !at) { return instead }
    if (!at) { complain("no " tag) }
    return at ? at : instead
  }
  FNR == 1 { comment_end = -1 }
  /^\/\*\*/ { comment = ""; in_comment = 1 }
  in_comment {
    comment = comment $0 "\n"
    if (/\*\/[ \t]*$/) { in_comment = 0; comment_end = FNR }
    next
  }
  /^ZEPHLANE_EXPORT/ {
    start = FNR
    declaration = $0
    while (declaration !~ /;/ && (getline line) > 0) { declaration = declaration " " line }
    gsub(/ +/, " ", declaration)
    ++count
    if (comment_end != start - 1) {
      complain("no doc comment right before it")
    } else if (declaration ~ /\(/) {
      param = position("@param", declaration !~ /\(void\)/, 1)
      result = position("@return", declaration !~ /^ZEPHLANE_EXPORT void [^*]/, param + 1)
      note = position("@note", 1, result + 1)
      if (param > result || result > note) { complain("tags out of order") }
    }
  }
  END { printf "%d declarations\n", count; exit bad }
'
