// What users do with readings.
#pragma once

#include "soak/scene.h"

namespace soak {

void typeReading(Scene& scene);
/// A level, date or time that is none, or a comment too long.
void typeWrongReading(Scene& scene);
/// A meter's file with headings, empty lines and old readings, some of them with a line that stops the import.
void importReadings(Scene& scene);
/// By SQL, one of them or many; keeps the diary small.
void deleteReadings(Scene& scene);
/// Several changes as one, taken back or not, seen by nobody else before.
void changeInBatch(Scene& scene);
/// Begun and given up.
void cancelChange(Scene& scene);
void countReadings(Scene& scene);

} // namespace soak
