#include "ui/selection_feedback.h"

void selection_changed() {}
