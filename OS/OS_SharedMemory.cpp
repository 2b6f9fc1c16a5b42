#include "OS_SharedMemory.h"

#include <stdio.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <new>

OS_SharedMemory::OS_SharedMemory() : m_pShm(nullptr) {}

OS_SharedMemory::~OS_SharedMemory() { delete m_pShm; }

int OS_SharedMemory::Init(char* name, int size)
{
    delete m_pShm;
    m_pShm = new (std::nothrow) OS_SharedMemoryRecord{-1, nullptr, 0};
    if (!m_pShm)
        return -1;
    // The key is derived from a file, so it must exist before ftok.
    char path[256];
    snprintf(path, sizeof path, "/tmp/shm.key.%s", name);
    FILE* keyFile = fopen(path, "w");
    if (keyFile)
        fclose(keyFile);
    key_t key = ftok(path, 1);
    if (key == -1)
        return -1;
    int id = shmget(key, static_cast<size_t>(size), IPC_CREAT | 0666);
    if (id == -1) {
        delete m_pShm;
        m_pShm = nullptr;
        return -1;
    }
    m_pShm->nId = id;
    m_pShm->nSize = size;
    return 0;
}

int OS_SharedMemory::Attach()
{
    if (!m_pShm)
        return -1;
    if (m_pShm->pAddr)
        return 0;
    void* addr = shmat(m_pShm->nId, nullptr, 0);
    if (addr == reinterpret_cast<void*>(-1))
        return -1;
    m_pShm->pAddr = addr;
    return 0;
}

void OS_SharedMemory::Detach()
{
    if (m_pShm && m_pShm->pAddr) {
        shmdt(m_pShm->pAddr);
        m_pShm->pAddr = nullptr;
    }
}

void* OS_SharedMemory::Data() { return m_pShm ? m_pShm->pAddr : nullptr; }
