set(KESTROM_EVENTS_SOURCES
  Events/DefaultUserSessionTracker.cpp)
