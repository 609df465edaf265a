// The body of the function node: the washer's state text from its update, told if it has changed.
const names = {Run: "Running", Pause: "Paused", Stop: "Ready"};
const update = JSON.parse(msg.payload);
const state = update["x.com.norvane.da.state"];
const left = update["x.com.norvane.da.remainingMinutes"];
const text = `${names[state]}, ${update["x.com.norvane.da.progress"]}, ${left} min left`;
if (context.get("text") === text) {
    return null;
}
context.set("text", text);
msg.payload = {device_id: "washer", state_text: text, running: state === "Run"};
return msg;
