#include "direct3d/UploadQueue.h"

#include <epoxy/gl.h>

#include <utility>

#include "direct3d/Texture.h"

namespace zarvik::host::direct3d {

void UploadQueue::addUpload(Texture& texture) {
    texture.keep();
    const std::scoped_lock lock(mutex);
    uploads.push_back(&texture);
}

void UploadQueue::addDeletion(unsigned glTexture) {
    const std::scoped_lock lock(mutex);
    deletions.push_back(glTexture);
}

void UploadQueue::run() {
    std::unique_lock lock(mutex);
    const auto dirty = std::exchange(uploads, {});
    lock.unlock();
    for (Texture* texture : dirty) {
        texture->upload();
        texture->drop();  // perhaps the last reference, which then adds a deletion
    }

    lock.lock();
    const auto unused = std::exchange(deletions, {});
    lock.unlock();
    if (!unused.empty()) {
        glDeleteTextures(static_cast<GLsizei>(unused.size()), unused.data());
    }
}

void UploadQueue::clear() {
    std::unique_lock lock(mutex);
    const auto dirty = std::exchange(uploads, {});
    lock.unlock();
    for (Texture* texture : dirty) {
        texture->drop();
    }
}

}  // namespace zarvik::host::direct3d
