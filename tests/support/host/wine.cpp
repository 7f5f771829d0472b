#include "support/wine.h"

bool TestSupport::UnderWine() {
    return false;
}
