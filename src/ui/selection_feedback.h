#pragma once

// The light tick a touch device gives when a control is chosen. A desktop has no such actuator:
// every control still calls this one hook, so a platform that gains one needs a single change.
void selection_changed();
