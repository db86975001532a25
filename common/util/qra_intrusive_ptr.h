#ifndef QRA_COMMON_UTIL_QRA_INTRUSIVE_PTR_H
#define QRA_COMMON_UTIL_QRA_INTRUSIVE_PTR_H

#include <atomic>

/// Base of what a boost::intrusive_ptr holds. References may be taken and dropped on any thread; the last one
/// that goes deletes the object.
class QRA_IntrusivePtr_Base {
public:
    QRA_IntrusivePtr_Base() = default;
    virtual ~QRA_IntrusivePtr_Base() = default;
    QRA_IntrusivePtr_Base(const QRA_IntrusivePtr_Base&) = delete;
    QRA_IntrusivePtr_Base& operator=(const QRA_IntrusivePtr_Base&) = delete;

    friend void intrusive_ptr_add_ref(const QRA_IntrusivePtr_Base* pObject) { ++pObject->m_nReferences; }
    friend void intrusive_ptr_release(const QRA_IntrusivePtr_Base* pObject) {
        if (--pObject->m_nReferences == 0) {
            delete pObject;
        }
    }

private:
    mutable std::atomic<int> m_nReferences{0};
};

#endif
