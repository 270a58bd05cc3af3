// The worker of a thread of a run. It hears and tells what its run does by a port, since the page has made it.
onmessage = ({ data: { script, port } }) => {
  importScripts(script); // listens to this worker, and tells it
  port.onmessage = self.onmessage;
  self.postMessage = (message) => port.postMessage(message);
};
