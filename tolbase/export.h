// SPDX-License-Identifier: Apache-2.0
// What leaves the shared library. Everything else in it is hidden.
#pragma once

// In front of a class or function that other programs use.
#define ORV_API __attribute__((visibility("default")))
