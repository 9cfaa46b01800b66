// The page's files, built into the program (page_assets.cpp is generated
// at build time from the bundle of web/page).
#pragma once

#include <cstddef>

namespace velqua_web {

struct Asset {
  const char* path;  // as requested, e.g. "/app.js"
  const char* type;  // its Content-Type
  const unsigned char* data;
  size_t size;
};

extern const Asset kPageAssets[];
extern const size_t kPageAssetCount;

}  // namespace velqua_web
