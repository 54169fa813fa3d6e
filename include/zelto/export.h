#pragma once

/** Marks what the library exports; everything else of it is hidden. */
#define ZELTO_API __attribute__((visibility("default")))
