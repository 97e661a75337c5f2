// The host's abstract plug-in base. The host calls through the virtual table, in this slot order.
#ifndef TAVMAP_HOSTAPI_CNZQPLUGININTERFACE_H
#define TAVMAP_HOSTAPI_CNZQPLUGININTERFACE_H

class CNZQPluginInterface {
 public:
  virtual ~CNZQPluginInterface() = default;

  // One complete run; true when all of it succeeded.
  virtual bool execute() = 0;

  // Called once after creation; the host must not call execute() when it returns false.
  virtual bool initPlugin() = 0;
};

#endif
