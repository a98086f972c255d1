#include "calls/Leftovers.h"

Leftovers::~Leftovers() {
    for (; !paths_.empty(); paths_.pop_back())
        log_.quietly("FileDelete", {.text = paths_.back()});
}

void Leftovers::deleteAll() {
    while (!paths_.empty()) {
        log_.require("FileDelete", {.text = paths_.back()});
        paths_.pop_back();
    }
}
