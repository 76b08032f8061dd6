// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_FUNCTION_REF_H
#define QUORVEL_CORE_FUNCTION_REF_H

#include <memory>
#include <type_traits>

namespace kor {

template <typename Signature>
class FunctionRef;

// A callable that is borrowed, not owned: valid while the lambda it was made from lives, which for a lambda written in
// an argument list is the whole call.
template <typename Result, typename... Arguments>
class FunctionRef<Result(Arguments...)> {
public:
    constexpr FunctionRef() = default;

    template <typename Callable>
    requires(!std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef>)
        FunctionRef(Callable&& callable)  // NOLINT(bugprone-forwarding-reference-overload): excluded by the constraint
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
