#include "support/display.h"

TestSupport::Display::Display() = default;
TestSupport::Display::~Display() = default;
