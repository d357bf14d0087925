#pragma once

#include "support/ui_test_app.h"
