// Which machine instructions the kernels may use.
//
// The program is built for the oldest processors of its architecture. Kernels that gain from newer
// instructions are compiled again with them, and the machine decides which is run; all give the
// same bytes.
#pragma once

namespace vort {

// What every processor has; on x86-64, the generation of AVX2; there, the one of AVX-512 with bit
// counts.
enum class Instructions { kPortable, kWide, kWidest };

// The best that both this processor and the build have.
Instructions best_instructions();

// The kernel for a set of instructions: kernel.operator()<set>() is to give one, of the same type
// for all sets.
//
//     const auto count = kernel_for(set, []<Instructions I>() { return CountKernel<I>::count; });
template <typename Kernel>
auto kernel_for(Instructions set, Kernel kernel) {
    switch (set) {
        case Instructions::kWidest:
            return kernel.template operator()<Instructions::kWidest>();
        case Instructions::kWide:
            return kernel.template operator()<Instructions::kWide>();
        default:
            return kernel.template operator()<Instructions::kPortable>();
    }
}

}  // namespace vort
