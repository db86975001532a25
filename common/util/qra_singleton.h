#ifndef QRA_COMMON_UTIL_QRA_SINGLETON_H
#define QRA_COMMON_UTIL_QRA_SINGLETON_H

/**
 * The one process-wide instance of T, made at its first use and never destroyed: callbacks of foreign threads
 * may still come while the process ends. Made once also when several threads race for the first use.
 */
template <class T>
class CQRASingleton {
public:
    static T* GetInstance() {
        static T* const m_pObj = new T;
        return m_pObj;
    }
};

#endif
