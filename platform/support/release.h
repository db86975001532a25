#ifndef QRA_PLATFORM_SUPPORT_RELEASE_H
#define QRA_PLATFORM_SUPPORT_RELEASE_H

namespace support {

/// Lets a unique_ptr give its object back with a function of a C library: std::unique_ptr<T,
/// Release<free_t>>.
template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

}  // namespace support

#endif
