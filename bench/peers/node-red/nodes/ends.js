// The two ends of the measured flow: one node that sends what the bench gives it, one that tells the bench what arrived.
module.exports = (RED) => {
    RED.nodes.registerType("bench source", function (config) {
        RED.nodes.createNode(this, config);
        RED.events.on("bench:update", (text) => this.send({payload: text}));
    });
    RED.nodes.registerType("bench sink", function (config) {
        RED.nodes.createNode(this, config);
        this.on("input", (message, send, done) => {
            RED.events.emit("bench:told", message.payload);
            done();
        });
    });
};
