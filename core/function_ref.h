// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_FUNCTION_REF_H
#define QUORVEL_CORE_FUNCTION_REF_H

#include <memory>
#include <type_traits>

namespace kor {

template <typename Signature>
class FunctionRef;

// Of the compilers only clang can be told what a result borrows from; it then refuses to keep one of a lambda that is
// gone.
#if __has_cpp_attribute(clang::lifetimebound)
#define QUORVEL_BORROWED [[clang::lifetimebound]]
#else
#define QUORVEL_BORROWED
#endif

// A callable that is borrowed, not owned. It must not outlive the lambda that it was made from: one written in an
// argument list lives for the whole call, so a FunctionRef is for parameters, never for a variable or what outlasts the
// call.
template <typename Result, typename... Arguments>
class FunctionRef<Result(Arguments...)> {
public:
    constexpr FunctionRef() = default;

    template <typename Callable>
    requires(!std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef>)
        // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): excluded by the constraint
        FunctionRef(Callable&& callable QUORVEL_BORROWED)
        : context_(const_cast<void*>(static_cast<const void*>(std::addressof(callable)))),
          call_([](void* context, Arguments... arguments) -> Result {
              return (*static_cast<std::remove_reference_t<Callable>*>(context))(arguments...);
          }) {
        static_assert(std::is_trivially_destructible_v<std::remove_reference_t<Callable>>,
                      "a longjmp skips destructors: capture by reference only");
    }

    Result operator()(Arguments... arguments) const { return call_(context_, arguments...); }
    explicit operator bool() const { return call_ != nullptr; }

private:
    void* context_ = nullptr;
    Result (*call_)(void*, Arguments...) = nullptr;
};

}  // namespace kor

#endif
