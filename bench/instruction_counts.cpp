// Calls every member of every family, each between two marks, for scripts/instructions, which runs this program under
// an emulator that counts what lies between them. Prints the compiler and the name of each case, in their order.
#include <algorithm>
#include <cstdio>
#include <string>

#include "family_calls.h"
#include "marks.h"

namespace {

using enum calls::Arrangement;

// Whole vectors and a rest, a picture narrower than any vector, and what else has a path of its own.
constexpr calls::Shape kShapes[] = {{333, 4},
                                    {12, 8},
                                    {333, 4, kTight},
                                    {12, 8, kTight},
                                    {333, 4, kPermuted},
                                    {12, 8, kPermuted},
                                    {100, 4, kUnrelated},
                                    {100, 4, kUpsideDown},
                                    {100, 4, kInPlace}};

void count(const std::string &name, const calls::Call &call) {
    marks::counted(call);
    puts(name.c_str());
}

}  // namespace

int main() {
#if defined(__clang__)
    printf("clang %d\n", __clang_major__);
#else
    printf("g++ %d\n", __GNUC__);
#endif
    for (const calls::Member &member : calls::members()) {
        for (const calls::Shape &shape : kShapes) {
            const auto &possible = member.arrangements;
            if (std::find(possible.begin(), possible.end(), shape.arrangement) == possible.end()) continue;
            count(member.name + " " + calls::name_of(shape.arrangement) + " " + std::to_string(shape.w) + "x" +
                      std::to_string(shape.h),
                  member.prepare(shape));
        }
    }
    for (const calls::Fixed &fixed : calls::fixed_calls()) count(fixed.name, fixed.call);
}
