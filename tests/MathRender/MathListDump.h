#pragma once

#include <QString>

#include <memory>

class MTMathAtom;
class MTMathList;

/// A formula with all that it holds as one line of text, so that tests can compare whole formulas. An atom is a short
/// name of its type, its nucleus and its parts:
///   var:x@bold^(num:2)_(…)    frac[left right](…)(…), atop… without a rule    sqrt[degree](…)    op:sin, op+limits:∑
///   inner[( )](…)    over(…) under(…) accent:U+0301(…)    color#f00(…)    space:3 style:1
///   table:matrix[lcr 18 0](cell&cell\cell&cell)
/// Missing lists and boundaries are "-", and a range other than (0, 0) comes last: {1+2}.
[[nodiscard]] QString dump(const MTMathAtom& atom);
[[nodiscard]] QString dump(const std::shared_ptr<MTMathList>& list);

/// The dump of a source, or its error: "error 3: Missing {".
[[nodiscard]] QString dumpOfSource(QStringView source);
