// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// Exhaustion is tested with requests that no allocator can meet: AddressSanitizer must answer none, as malloc does.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
