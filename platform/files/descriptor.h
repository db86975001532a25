#ifndef QRA_PLATFORM_FILES_DESCRIPTOR_H
#define QRA_PLATFORM_FILES_DESCRIPTOR_H

namespace files {

/// An open file or directory, closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept;

    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

private:
    int number_;
};

}  // namespace files

#endif
