#include "xml_turn.h"

#include <mutex>

namespace {

std::mutex g_turn;

}  // namespace

void xml_turn_begin() {
    g_turn.lock();
}

void xml_turn_end() {
    g_turn.unlock();
}
