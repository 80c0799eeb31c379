#include "MTInnerListAtom.h"

void MTInnerListAtom::unshare(ListTransform transform) {
    MTMathAtom::unshare(transform);
    innerList = transform(innerList);
}
