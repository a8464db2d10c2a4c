#pragma once

#include <cstdint>
#include <vector>

#include "sr/SRContentItem.h"

namespace VantorCli {

// Visits an item and all items below it in the order of the report: `enter(item)` before those below it,
// `leave(item)` after them. The way down is kept on a list rather than on the call stack.
template <typename Enter, typename Leave>
void WalkContent(const VantorWrappers::SRContentItem& root, Enter enter, Leave leave) {
    struct Step {
        const VantorWrappers::SRContentItem* fItem;
        int32_t fNext;
    };
    std::vector<Step> path = {{&root, 0}};
    enter(root);
    while (!path.empty()) {
        Step& step = path.back();
        const VantorWrappers::SRContentItem* child = nullptr;
        if (step.fItem->GetContentItem(step.fNext++, child)) {
            enter(*child);
            path.push_back({child, 0});
        } else {
            leave(*step.fItem);
            path.pop_back();
        }
    }
}

}  // namespace VantorCli
