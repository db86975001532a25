#include "platform/mtp/host/call_table.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

namespace mtp {

namespace {

#if __ELF_NATIVE_CLASS == 64
size_t symbol_index(ElfW(Xword) info) {
    return ELF64_R_SYM(info);
}
#else
size_t symbol_index(ElfW(Word) info) {
    return ELF32_R_SYM(info);
}
#endif

/// The tables of a loaded library.
struct Tables {
    ElfW(Addr) base = 0;
    const ElfW(Sym) * symbols = nullptr;
    const char* names = nullptr;
    ElfW(Addr) relocations[2] = {};  ///< of data and of functions
    size_t sizes[2] = {};
    bool with_addend = sizeof(void*) == 8;
};

Tables tables_of(const link_map& library) {
    Tables tables;
    tables.base = library.l_addr;
    for (const ElfW(Dyn)* entry = library.l_ld; entry->d_tag != DT_NULL; ++entry) {
        switch (entry->d_tag) {
            case DT_SYMTAB:
                tables.symbols = reinterpret_cast<const ElfW(Sym)*>(entry->d_un.d_ptr);
                break;
            case DT_STRTAB:
                tables.names = reinterpret_cast<const char*>(entry->d_un.d_ptr);
                break;
            case DT_RELA:
            case DT_REL:
                tables.relocations[0] = entry->d_un.d_ptr;
                tables.with_addend = entry->d_tag == DT_RELA;
                break;
            case DT_RELASZ:
            case DT_RELSZ:
                tables.sizes[0] = entry->d_un.d_val;
                break;
            case DT_JMPREL:
                tables.relocations[1] = entry->d_un.d_ptr;
                break;
            case DT_PLTRELSZ:
                tables.sizes[1] = entry->d_un.d_val;
                break;
            default:
                break;
        }
    }
    return tables;
}

const Replacement* find(const char* name, const Replacement* replacements, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (std::strcmp(name, replacements[i].symbol) == 0) {
            return &replacements[i];
        }
    }
    return nullptr;
}

/// Writes one entry of the table, which may lie on a page that is only read.
bool write_entry(ElfW(Addr) address, void* value) {
    const auto page_size = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const uintptr_t page = address & ~(page_size - 1);
    // What was read-only is left writable: the entries that are bound later lie on the same pages.
    if (mprotect(reinterpret_cast<void*>(page), address - page + sizeof value, PROT_READ | PROT_WRITE) != 0) {
        return false;
    }
    std::memcpy(reinterpret_cast<void*>(address), &value, sizeof value);
    return true;
}

}  // namespace

size_t replace_imports(const void* inside, const Replacement* replacements, size_t count) {
    Dl_info info;
    link_map* library = nullptr;
    if (dladdr1(inside, &info, reinterpret_cast<void**>(&library), RTLD_DL_LINKMAP) == 0 ||
        library == nullptr) {
        return 0;
    }
    const Tables tables = tables_of(*library);
    if (tables.symbols == nullptr || tables.names == nullptr) {
        return 0;
    }
    const size_t step = tables.with_addend ? sizeof(ElfW(Rela)) : sizeof(ElfW(Rel));
    size_t replaced = 0;
    for (int table = 0; table < 2; ++table) {
        for (size_t at = 0; at + step <= tables.sizes[table]; at += step) {
            // The two kinds of entries begin alike.
            const auto* entry = reinterpret_cast<const ElfW(Rel)*>(tables.relocations[table] + at);
            const char* name = tables.names + tables.symbols[symbol_index(entry->r_info)].st_name;
            const Replacement* replacement = find(name, replacements, count);
            if (replacement != nullptr) {
                if (!write_entry(tables.base + entry->r_offset, replacement->address)) {
                    return 0;
                }
                ++replaced;
            }
        }
    }
    return replaced;
}

}  // namespace mtp
