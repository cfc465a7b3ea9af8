set(KESTROM_DEVICE_SERVICES_SOURCES
  Device/DefaultDeviceDataService.cpp
  Device/DefaultLocationService.cpp
  Device/DefaultNotificationsService.cpp)
