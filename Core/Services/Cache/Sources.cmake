set(KESTROM_CACHE_SOURCES
  Cache/CacheFilename.cpp
  Cache/DefaultJSONCache.cpp
  Cache/SystemFileManager.cpp)
